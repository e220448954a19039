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
    const auto& icon = session_.form().customIcon;
    preview_->setPath(icon.value_or(std::filesystem::path()));
    path_->setFullText(displayLine(icon.value_or(std::filesystem::path()).native()));
    preview_->setVisible(icon.has_value());
    path_->setVisible(icon.has_value());
    clear_->setVisible(icon.has_value());
    none_->setVisible(!icon);
}

} // namespace quorvel
