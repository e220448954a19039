#pragma once

#include "QuorvelApp/newclone/TargetForms.h"
#include "QuorvelApp/widgets/IconLoader.h"

namespace quorvel {

/// The app of a clone that is edited, which stays as it is.
class EditedApp : public TargetForm {
    Q_OBJECT

public:
    EditedApp(NewCloneSession& session, IconLoader& icons, QWidget* parent);
};

} // namespace quorvel
