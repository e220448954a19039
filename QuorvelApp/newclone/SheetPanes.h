#pragma once

#include "QuorvelApp/model/NewCloneSession.h"
#include "QuorvelApp/widgets/IconLoader.h"

#include <QWidget>

namespace quorvel {

/// The middle of a sheet that makes or edits a clone: the target pane and the configuration pane.
class SheetPanes : public QWidget {
    Q_OBJECT

public:
    SheetPanes(NewCloneSession& session, IconLoader& icons, QWidget* parent);
};

} // namespace quorvel
