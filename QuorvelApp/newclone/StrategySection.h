#pragma once

#include "QuorvelApp/model/NewCloneSession.h"

#include <QWidget>

class QComboBox;
class QPushButton;

namespace quorvel {

class Spinner;
class WrappingText;

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
    WrappingText* caption_;
};

} // namespace quorvel
