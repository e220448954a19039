#pragma once

#include "QuorvelApp/model/NewCloneSession.h"
#include "QuorvelApp/widgets/IconLoader.h"

#include <QWidget>

namespace quorvel {

/// Chooses the target: the app picker, or the form of another kind. All four keep their state while
/// hidden.
class TargetPane : public QWidget {
    Q_OBJECT

public:
    TargetPane(NewCloneSession& session, IconLoader& icons, QWidget* parent);
};

} // namespace quorvel
