#include "QuorvelApp/newclone/CustomIconRow.h"

#include "QuorvelApp/Components.h"
#include "QuorvelApp/model/DisplayText.h"
#include "QuorvelApp/widgets/CopyableLabel.h"

#include <QHBoxLayout>

namespace quorvel {

CustomIconRow::CustomIconRow(NewCloneSession& session, IconLoader& icons)
    : session_(session),
      preview_(new AppIcon(icons, 24)),
      path_(new ElidedLabel(TextStyle::caption, Ink::secondary, Qt::ElideMiddle)),
      none_(makeLabel(tr("Uses the app's own icon"), TextStyle::caption, Ink::secondary)),
      clear_(makeButton(tr("Clear"), ButtonLook::small)) {
    auto* choose = makeButton(tr("Choose .&icns…"), ButtonLook::small);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(6);
    row->addWidget(preview_);
    row->addWidget(path_, 1);
    row->addWidget(none_);
    row->addStretch();
    row->addWidget(clear_);
    row->addWidget(choose);
    connect(clear_, &QPushButton::clicked, &session_, &NewCloneSession::clearIcon);
    connect(choose, &QPushButton::clicked, &session_, [this] { session_.chooseIcon(window()); });
    connect(&session_, &NewCloneSession::changed, this, &CustomIconRow::refresh);
    refresh();
}

void CustomIconRow::refresh() {
    const NewCloneForm& form = session_.form();
    const auto own = form.edited ? form.edited->ownIcon : std::nullopt;
    const auto& icon = form.customIcon ? form.customIcon : own;
    preview_->setPath(icon.value_or(std::filesystem::path()));
    path_->setFullText(form.customIcon ? displayLine(form.customIcon->native()) : tr("Its own"));
    preview_->setVisible(icon.has_value());
    path_->setVisible(icon.has_value());
    clear_->setVisible(icon.has_value());
    none_->setVisible(!icon);
}

} // namespace quorvel
