#include "QuorvelApp/library/CloneList.h"

#include "QuorvelApp/library/CloneRow.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QLineEdit>

namespace quorvel {

CloneList::~CloneList() {
    if (editor_) {
        editor_->disconnect(this); // it is destroyed later, when nothing may listen any more
    }
}

void CloneList::editName() {
    const QModelIndex row = currentIndex();
    if (!row.isValid() || state() == EditingState) {
        return;
    }
    scrollTo(row);
    edit(row);
    for (QLineEdit* editor : findChildren<QLineEdit*>(CloneRow::editorName)) {
        if (!editor->isHidden()) { // the previous one is hidden, and deleted a little later
            editor_ = editor;
            connect(editor, &QObject::destroyed, this, [this](const QObject* gone) {
                if (editor_ == gone) {
                    editor_.clear();
                }
                Q_EMIT editingChanged();
            });
        }
    }
    Q_EMIT editingChanged();
}

bool CloneList::isEditing() const {
    return !editor_.isNull();
}

void CloneList::contextMenuEvent(QContextMenuEvent* event) {
    const bool byMouse = event->reason() == QContextMenuEvent::Mouse;
    const QModelIndex row = byMouse ? indexAt(event->pos()) : currentIndex();
    if (row.isValid()) {
        setCurrentIndex(row);
        scrollTo(row);
        Q_EMIT menuRequested(byMouse ? event->globalPos()
                                     : viewport()->mapToGlobal(visualRect(row).center()));
    }
}

void CloneList::keyPressEvent(QKeyEvent* event) {
    if (state() == EditingState) {
        event->ignore(); // what the editor had no use for
    } else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        if (currentIndex().isValid() && !event->isAutoRepeat()) {
            Q_EMIT openRequested();
        }
    } else {
        ItemList::keyPressEvent(event);
    }
}

void CloneList::mouseDoubleClickEvent(QMouseEvent* event) {
    ItemList::mouseDoubleClickEvent(event);
    if (event->button() == Qt::LeftButton && indexAt(event->position().toPoint()).isValid()) {
        Q_EMIT openRequested();
    }
}

} // namespace quorvel
