#include "QuorvelApp/newclone/SearchField.h"

#include "QuorvelApp/Components.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QStyle>

namespace quorvel {

using namespace Qt::StringLiterals;

SearchField::SearchField(NewCloneSession& session) : text_(new QLineEdit) {
    setObjectName(u"searchField"_s);
    text_->setObjectName(u"searchText"_s);
    text_->setPlaceholderText(tr("Search apps"));
    text_->setAccessibleName(tr("Search apps"));
    text_->setFixedWidth(160);
    text_->installEventFilter(this);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(Spacing::normal, Spacing::tight, Spacing::close, Spacing::tight);
    row->setSpacing(Spacing::close);
    row->addWidget(new SymbolView(u"magnifyingglass"_s, Ink::secondary, 14));
    row->addWidget(text_);
    setFocusProxy(text_);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(text_, &QLineEdit::textChanged, this, [&session](const QString& text) {
        session.edit([&](NewCloneForm& form) { form.search = text.toStdString(); });
    });
}

bool SearchField::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) {
        setProperty("focused", event->type() == QEvent::FocusIn);
        style()->unpolish(this);
        style()->polish(this);
    }
    return QFrame::eventFilter(watched, event);
}

} // namespace quorvel
