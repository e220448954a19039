#include "QuorvelApp/newclone/ConfigurationHeader.h"

#include "QuorvelApp/Components.h"
#include "QuorvelApp/model/AppGridModel.h"
#include "QuorvelApp/model/DisplayText.h"
#include "QuorvelApp/newclone/KindLook.h"
#include "QuorvelApp/widgets/CopyableLabel.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace quorvel {
namespace {

struct Summary {
    QString title;
    QString subtitle;
};

Summary summaryOf(const NewCloneForm& form) {
    const QString label = KindLook::of(form.shortcutType).label;
    switch (form.shortcutType) {
    case ShortcutKind::web:
        return {label, displayLine(form.webURL)};
    case ShortcutKind::file:
        return {label, displayLine(form.filePath)};
    case ShortcutKind::command:
        return {label, displayLine(form.commandPathText)};
    case ShortcutKind::app:
        break;
    }
    return form.selected
               ? Summary{displayLine(form.selected->name), displayLine(form.selected->url.native())}
               : Summary{};
}

} // namespace

ConfigurationHeader::ConfigurationHeader(NewCloneSession& session, IconLoader& icons)
    : session_(session),
      icon_(new AppIcon(icons, 40)),
      symbol_(new SymbolView({}, Ink::accent, 28)),
      title_(new ElidedLabel(TextStyle::headline, Ink::text)),
      subtitle_(new ElidedLabel(TextStyle::caption, Ink::secondary, Qt::ElideMiddle)) {
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    auto* texts = new QVBoxLayout;
    texts->setSpacing(2);
    texts->addStretch();
    texts->addWidget(title_);
    texts->addWidget(subtitle_);
    texts->addStretch();
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(12);
    row->addWidget(icon_);
    row->addWidget(symbol_);
    row->addLayout(texts, 1);
    connect(&session_, &NewCloneSession::changed, this, &ConfigurationHeader::refresh);
    refresh();
}

void ConfigurationHeader::refresh() {
    const NewCloneForm& form = session_.form();
    const Summary summary = summaryOf(form);
    const bool isApp = form.shortcutType == ShortcutKind::app;
    icon_->setVisible(isApp);
    symbol_->setVisible(!isApp);
    if (isApp && form.selected) {
        icon_->setPath(iconSource(*form.selected));
    }
    symbol_->setSymbol(KindLook::of(form.shortcutType).symbol);
    title_->setFullText(summary.title);
    subtitle_->setFullText(summary.subtitle);
}

} // namespace quorvel
