#include "QuorvelApp/newclone/TargetPane.h"

#include "QuorvelApp/newclone/AppPicker.h"
#include "QuorvelApp/newclone/EditedApp.h"
#include "QuorvelApp/newclone/TargetForms.h"

#include <QStackedLayout>

#include <map>

namespace quorvel {

namespace {

QWidget* makePage(ShortcutKind kind, NewCloneSession& session, IconLoader& icons, QWidget* parent) {
    switch (kind) {
    case ShortcutKind::web:
        return new WebForm(session);
    case ShortcutKind::file:
        return new FileForm(session);
    case ShortcutKind::command:
        return new CommandForm(session);
    case ShortcutKind::app:
        break;
    }
    if (session.form().edited) {
        return new EditedApp(session, icons, parent);
    }
    return new AppPicker(session, icons, parent);
}

} // namespace

TargetPane::TargetPane(NewCloneSession& session, IconLoader& icons, QWidget* parent)
    : QWidget(parent) {
    auto* pages = new QStackedLayout(this);
    std::map<ShortcutKind, QWidget*> pageOf;
    for (const ShortcutKind kind : allCases<ShortcutKind>()) {
        pageOf[kind] = makePage(kind, session, icons, this);
        pages->addWidget(pageOf[kind]);
    }
    const auto show = [pages, pageOf, &session] {
        pages->setCurrentWidget(pageOf.at(session.form().shortcutType));
    };
    connect(&session, &NewCloneSession::changed, this, show);
    show();
}

} // namespace quorvel
