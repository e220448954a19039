#pragma once

#include "QuorvelApp/model/NewCloneSession.h"
#include "QuorvelApp/widgets/IconLoader.h"

#include <QWidget>

namespace quorvel {

/// Where the target is chosen: the app picker, or the form of the other kinds. All four stay as
/// they are while another one shows.
class TargetPane : public QWidget {
    Q_OBJECT

public:
    TargetPane(NewCloneSession& session, IconLoader& icons);
};

} // namespace quorvel
