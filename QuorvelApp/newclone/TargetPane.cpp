#include "QuorvelApp/newclone/TargetPane.h"

#include "QuorvelApp/newclone/AppPicker.h"
#include "QuorvelApp/newclone/TargetForms.h"

#include <QStackedLayout>

namespace quorvel {

TargetPane::TargetPane(NewCloneSession& session, IconLoader& icons, QWidget* parent)
    : QWidget(parent) {
    // In the order of the kinds.
    auto* pages = new QStackedLayout(this);
    pages->addWidget(new AppPicker(session, icons, this));
    pages->addWidget(new WebForm(session));
    pages->addWidget(new FileForm(session));
    pages->addWidget(new CommandForm(session));
    connect(&session, &NewCloneSession::changed, this, [pages, &session] {
        pages->setCurrentIndex(static_cast<int>(session.form().shortcutType));
    });
}

} // namespace quorvel
