#pragma once

#include "QuorvelApp/model/NewCloneSession.h"
#include "QuorvelApp/widgets/IconLoader.h"

#include <QWidget>

class QLabel;
class QPushButton;

namespace quorvel {

class AppIcon;
class ElidedLabel;

/// The clone's own icon: a chosen file with its preview, or a note that there is none.
class CustomIconRow : public QWidget {
    Q_OBJECT

public:
    CustomIconRow(NewCloneSession& session, IconLoader& icons);

private:
    void refresh();

    NewCloneSession& session_;
    AppIcon* preview_;
    ElidedLabel* path_;
    QLabel* none_;
    QPushButton* clear_;
};

} // namespace quorvel
