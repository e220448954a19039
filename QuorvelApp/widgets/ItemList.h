#pragma once

#include <QListView>
#include <QSignalBlocker>

namespace quorvel {

/// A list whose first item is selected by the first arrow key, not by the focus alone.
class ItemList : public QListView {
public:
    using QListView::QListView;

protected:
    void focusInEvent(QFocusEvent* event) override {
        const bool nothingChosen = !currentIndex().isValid();
        const QSignalBlocker quiet(nothingChosen ? selectionModel() : nullptr);
        QListView::focusInEvent(event);
        if (nothingChosen) {
            selectionModel()->clearCurrentIndex();
        }
    }
};

} // namespace quorvel
