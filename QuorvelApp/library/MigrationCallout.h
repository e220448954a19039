#pragma once

#include <QFrame>

namespace quorvel {

/// Offers to move the contents of a clone's own folders into the user's.
class MigrationCallout : public QFrame {
    Q_OBJECT

public:
    explicit MigrationCallout(QWidget* parent = nullptr);

Q_SIGNALS:
    void migrationRequested();
};

} // namespace quorvel
