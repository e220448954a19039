#include "QuorvelApp/newclone/StrategySection.h"

#include "QuorvelApp/Components.h"
#include "QuorvelApp/model/DisplayText.h"
#include "QuorvelApp/model/QtText.h"
#include "QuorvelApp/model/Translated.h"
#include "QuorvelApp/widgets/CopyableLabel.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include <algorithm>

namespace quorvel {

StrategySection::StrategySection(NewCloneSession& session)
    : session_(session),
      detect_(makeButton({}, ButtonLook::small)),
      detecting_(new Spinner(14, Ink::secondary, detect_)),
      choices_(new PaneComboBox),
      caption_(new WrappingText(TextStyle::caption, Ink::secondary)) {
    detect_->setText(tr("Auto-de&tect"));
    detect_->setFixedSize(detect_->sizeHint());
    detect_->setAccessibleName(tr("Auto-detect"));
    detect_->setToolTip(tr("Launch the app briefly to detect how it stores data"));
    detecting_->move((detect_->width() - detecting_->width()) / 2,
                     (detect_->height() - detecting_->height()) / 2);
    connect(detect_, &QPushButton::clicked, &session_, &NewCloneSession::detect);

    choices_->setAccessibleName(tr("Isolation strategy"));
    for (const Strategy strategy : selectableStrategies) {
        choices_->addItem(qtText(strategyLabel(rawString(strategy), translated)));
    }
    // It can't be chosen, but an edited clone may have it.
    choices_->setPlaceholderText(
        qtText(strategyLabel(rawString(Strategy::unsupported), translated)));
    connect(choices_, &QComboBox::currentIndexChanged, this, [this](int index) {
        if (index >= 0) {
            session_.edit([&](NewCloneForm& form) {
                form.strategy = selectableStrategies.at(static_cast<std::size_t>(index));
            });
        }
    });

    auto* label = makeLabel(tr("Isolation strategy"), TextStyle::captionMedium);
    label->setBuddy(choices_);
    auto* row = new QHBoxLayout;
    row->addWidget(label);
    row->addStretch();
    row->addWidget(detect_);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(6);
    column->addLayout(row);
    column->addWidget(choices_);
    column->addWidget(caption_);
    connect(&session_, &NewCloneSession::changed, this, &StrategySection::refresh);
    refresh();
}

void StrategySection::refresh() {
    const NewCloneForm& form = session_.form();
    const auto* choice =
        std::find(selectableStrategies.begin(), selectableStrategies.end(), form.strategy);
    const QSignalBlocker quiet(choices_);
    choices_->setCurrentIndex(choice == selectableStrategies.end()
                                  ? -1
                                  : static_cast<int>(choice - selectableStrategies.begin()));
    detect_->setText(form.detecting ? QString() : tr("Auto-de&tect"));
    detect_->setEnabled(!form.detecting);
    detecting_->setVisible(form.detecting);
    caption_->setFullText(displayText(form.strategyCaption()));
}

} // namespace quorvel
