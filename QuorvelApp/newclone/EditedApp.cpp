#include "QuorvelApp/newclone/EditedApp.h"

#include "QuorvelApp/newclone/ConfigurationHeader.h"

namespace quorvel {

using namespace Qt::StringLiterals;

EditedApp::EditedApp(NewCloneSession& session, IconLoader& icons, QWidget* parent)
    : TargetForm(session, u"app"_s, tr("App"), parent) {
    addRow(new ConfigurationHeader(session, icons));
    addCaption(tr("A clone keeps its app. For another one, make a new clone."));
}

} // namespace quorvel
