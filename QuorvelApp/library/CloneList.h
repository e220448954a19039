#pragma once

#include "QuorvelApp/widgets/ItemList.h"

#include <QPoint>
#include <QPointer>

namespace quorvel {

/// The list of clones, as a view: mouse and keys ask for what can be done with the current row.
class CloneList : public ItemList {
    Q_OBJECT

public:
    using ItemList::ItemList;
    ~CloneList() override;

    /// Lets the user edit the current row's name where it is.
    void editName();
    /// Returns whether the user is editing a name.
    [[nodiscard]] bool isEditing() const;

Q_SIGNALS:
    /// By a double click or Return.
    void openRequested();
    /// By the right button, which makes its row the current one, or by the keyboard.
    void menuRequested(QPoint place);
    /// `isEditing` has changed.
    void editingChanged();

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    QPointer<QObject> editor_{}; ///< a field; no longer one once its `destroyed` is emitted
};

} // namespace quorvel
