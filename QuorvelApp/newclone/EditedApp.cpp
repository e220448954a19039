#include "QuorvelApp/newclone/EditedApp.h"

#include "QuorvelApp/newclone/ConfigurationHeader.h"
#include "QuorvelApp/newclone/KindLook.h"

namespace quorvel {

EditedApp::EditedApp(NewCloneSession& session, IconLoader& icons, QWidget* parent)
    : TargetForm(session, ShortcutKind::app, KindLook::of(ShortcutKind::app).label, parent) {
    addRow(new ConfigurationHeader(session, icons));
    addCaption(tr("A clone keeps its app. For another one, make a new clone."));
}

} // namespace quorvel
