#pragma once

#include "QuorvelApp/widgets/IconLoader.h"

#include <QStyledItemDelegate>

namespace quorvel {

/// Paints a clone in the sidebar: icon, name, target, and a dot while it is running.
class CloneRow : public QStyledItemDelegate {
    Q_OBJECT

public:
    static constexpr int iconSize = 30;

    explicit CloneRow(IconLoader& icons, QObject* parent = nullptr);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const override;
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;

private:
    /// Where a row's parts are, mirrored for right-to-left layouts.
    struct Places {
        QRect background{};
        QRect icon{};
        QRect name{};
        QRect summary{};
        QRect dot{};
    };
    [[nodiscard]] static Places places(const QStyleOptionViewItem& option);

    IconLoader& icons_;
};

} // namespace quorvel
