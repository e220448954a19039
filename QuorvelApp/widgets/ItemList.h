#pragma once

#include <QListView>
#include <QSignalBlocker>

namespace quorvel {

/// A list whose first item is chosen by the first arrow, not by the mere focus.
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
