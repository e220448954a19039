#pragma once

#include "QuorvelApp/model/NewCloneSession.h"

#include <QWidget>

namespace quorvel {

class PaneComboBox;

/// The choice of what opens the links that are clicked in the clone: the user's default
/// browser, the clone itself, or one of the other clones.
class LinksRow : public QWidget {
    Q_OBJECT

public:
    LinksRow(NewCloneSession& session, QWidget* parent);

private:
    void addClones();
    void refresh();

    NewCloneSession& session_;
    PaneComboBox* choices_;
};

} // namespace quorvel
