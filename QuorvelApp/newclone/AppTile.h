#pragma once

#include "QuorvelApp/model/AppGridModel.h"
#include "QuorvelApp/widgets/IconLoader.h"

#include <QStyledItemDelegate>

namespace quorvel {

/// Paints an app of the picker: icon, a lock if it is sandboxed, and name.
class AppTile : public QStyledItemDelegate {
    Q_OBJECT

public:
    static constexpr int iconSize = 48;
    static constexpr int height = 102;
    static constexpr int minimumWidth = 92;
    static constexpr int maximumWidth = 120;
    static constexpr int spacing = 16;

    explicit AppTile(IconLoader& icons, QObject* parent = nullptr);

    /// Returns the tile's rectangle in its cell, which includes the spacing around it.
    [[nodiscard]] static QRect tileRect(const QRect& cell);

    /// Sets the width of a tile; the view's cells are wider by `spacing`.
    void setWidth(int width) { width_ = width; }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const override;
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;

Q_SIGNALS:
    /// Emitted when the tile of `index` was painted, and so is in view.
    void appeared(const QModelIndex& index) const;

private:
    [[nodiscard]] static QRect iconRect(const QStyleOptionViewItem& option);
    [[nodiscard]] static QRect badgeRect(const QStyleOptionViewItem& option);

    IconLoader& icons_;
    int width_ = minimumWidth;
};

} // namespace quorvel
