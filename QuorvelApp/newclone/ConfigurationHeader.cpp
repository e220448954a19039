#include "QuorvelApp/newclone/ConfigurationHeader.h"

#include "QuorvelApp/Components.h"
#include "QuorvelApp/model/AppGridModel.h"
#include "QuorvelApp/model/DisplayText.h"
#include "QuorvelApp/widgets/CopyableLabel.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace quorvel {
namespace {

using namespace Qt::StringLiterals;

struct Summary {
    QString symbol;
    QString title;
    QString subtitle;
};

Summary summaryOf(const NewCloneForm& form) {
    switch (form.shortcutType) {
    case ShortcutKind::web:
        return {u"globe"_s, ConfigurationHeader::tr("Web App"), displayLine(form.webURL)};
    case ShortcutKind::file:
        return {u"folder"_s, ConfigurationHeader::tr("File / Folder"), displayLine(form.filePath)};
    case ShortcutKind::command:
        return {u"terminal"_s, ConfigurationHeader::tr("Command"),
                displayLine(form.commandPathText)};
    case ShortcutKind::app:
        break;
    }
    return form.selected ? Summary{u"app"_s, displayLine(form.selected->name),
                                   displayLine(form.selected->url.native())}
                         : Summary{u"app"_s, {}, {}};
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
    symbol_->setSymbol(summary.symbol);
    title_->setFullText(summary.title);
    subtitle_->setFullText(summary.subtitle);
}

} // namespace quorvel
