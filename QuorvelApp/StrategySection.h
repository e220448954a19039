#pragma once

#include "QuorvelApp/NewCloneSession.h"

#include <QWidget>

class QComboBox;
class QLabel;
class QPushButton;

namespace quorvel {

class Spinner;

/// The isolation strategy of an app clone, and its detection.
class StrategySection : public QWidget {
    Q_OBJECT

public:
    explicit StrategySection(NewCloneSession& session);

private:
    void refresh();

    NewCloneSession& session_;
    QPushButton* detect_;
    Spinner* detecting_;
    QComboBox* choices_;
    QLabel* caption_;
};

} // namespace quorvel
