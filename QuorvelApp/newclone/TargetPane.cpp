#include "QuorvelApp/newclone/TargetPane.h"

#include "QuorvelApp/newclone/AppPicker.h"
#include "QuorvelApp/newclone/EditedApp.h"
#include "QuorvelApp/newclone/TargetForms.h"

#include <QStackedLayout>

namespace quorvel {

TargetPane::TargetPane(NewCloneSession& session, IconLoader& icons, QWidget* parent)
    : QWidget(parent) {
    // In the order of the kinds.
    auto* pages = new QStackedLayout(this);
    pages->addWidget(session.form().edited
                         ? static_cast<QWidget*>(new EditedApp(session, icons, this))
                         : new AppPicker(session, icons, this));
    pages->addWidget(new WebForm(session));
    pages->addWidget(new FileForm(session));
    pages->addWidget(new CommandForm(session));
    const auto show = [pages, &session] {
        pages->setCurrentIndex(static_cast<int>(session.form().shortcutType));
    };
    connect(&session, &NewCloneSession::changed, this, show);
    show();
}

} // namespace quorvel
