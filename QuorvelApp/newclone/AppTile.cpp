#include "QuorvelApp/newclone/AppTile.h"

#include "QuorvelApp/model/DisplayText.h"
#include "QuorvelApp/theme/Symbols.h"
#include "QuorvelApp/theme/Theme.h"
#include "QuorvelApp/widgets/CrispPixmap.h"
#include "QuorvelApp/widgets/TileText.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

namespace quorvel {
namespace {

constexpr int padding = 10;
constexpr int gap = 6;
constexpr int nameHeight = 28;
constexpr int lockSize = 9;
constexpr int lockPadding = 3;
constexpr double ring = 1.5;
constexpr int badgeSize = lockSize + 2 * lockPadding;

QRect nameRect(const QStyleOptionViewItem& option) {
    const QRect tile = AppTile::tileRect(option.rect);
    return {tile.left() + padding, tile.top() + padding + AppTile::iconSize + gap,
            tile.width() - 2 * padding, nameHeight};
}

void paintGround(QPainter* painter, const QStyleOptionViewItem& option, const Colors& colors) {
    const QRectF tile = QRectF(AppTile::tileRect(option.rect)).adjusted(0.75, 0.75, -0.75, -0.75);
    QColor fill = colors.accent;
    if (option.state.testFlag(QStyle::State_Selected)) {
        fill.setAlphaF(0.18F);
        painter->setPen(QPen(colors.accent, 1.5));
    } else if (option.state.testFlag(QStyle::State_MouseOver)) {
        fill = colors.text;
        fill.setAlphaF(0.05F);
        painter->setPen(Qt::NoPen);
    } else {
        return;
    }
    painter->setBrush(fill);
    painter->drawRoundedRect(tile, 10, 10);
}

void paintRing(QPainter* painter, const QStyleOptionViewItem& option, const Colors& colors) {
    if (option.state.testFlag(QStyle::State_HasFocus)) {
        QColor color = colors.accent;
        color.setAlphaF(0.5F);
        painter->setPen(QPen(color, 3));
        painter->setBrush(Qt::NoBrush);
        painter->drawRoundedRect(QRectF(AppTile::tileRect(option.rect)).adjusted(-2, -2, 2, 2), 12,
                                 12);
    }
}

void paintLock(QPainter* painter, const QRect& badge, const Colors& colors) {
    painter->setPen(Qt::NoPen);
    painter->setBrush(colors.content);
    painter->drawEllipse(QRectF(badge).adjusted(-ring, -ring, ring, ring));
    painter->setBrush(colors.orange);
    painter->drawEllipse(badge);
    symbolIcon(QStringLiteral("lock.fill"), Ink::onAccent)
        .paint(painter, badge.adjusted(lockPadding, lockPadding, -lockPadding, -lockPadding));
}

} // namespace

AppTile::AppTile(IconLoader& icons, QObject* parent) : QStyledItemDelegate(parent), icons_(icons) {}

QRect AppTile::tileRect(const QRect& cell) {
    const int half = spacing / 2;
    return cell.adjusted(half, half, -half, -half);
}

QRect AppTile::iconRect(const QStyleOptionViewItem& option) {
    const QRect tile = tileRect(option.rect);
    return {tile.left() + (tile.width() - iconSize) / 2, tile.top() + padding, iconSize, iconSize};
}

QRect AppTile::badgeRect(const QStyleOptionViewItem& option) {
    const QRect icon = iconRect(option);
    constexpr int outward = 3;
    const QRect trailing(icon.right() + 1 - badgeSize + outward,
                         icon.bottom() + 1 - badgeSize + outward, badgeSize, badgeSize);
    return QStyle::visualRect(option.direction, option.rect, trailing);
}

void AppTile::paint(QPainter* painter, const QStyleOptionViewItem& option,
                    const QModelIndex& index) const {
    const Colors& colors = colorsFor(option.palette);
    const auto path = index.data(AppGridModel::IconPathRole).value<std::filesystem::path>();
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    paintGround(painter, option, colors);
    paintRing(painter, option, colors);
    drawCrisp(*painter, iconRect(option),
              icons_.icon(path, iconSize, painter->device()->devicePixelRatioF()));
    if (index.data(AppGridModel::SandboxedRole).toBool()) {
        paintLock(painter, badgeRect(option), colors);
    }
    painter->setPen(colors.text);
    TileText::paint(painter, nameRect(option), index.data().toString());
    painter->restore();
    Q_EMIT appeared(index);
}

QSize AppTile::sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const {
    return {width_ + spacing, height + spacing};
}

bool AppTile::helpEvent(QHelpEvent* event, QAbstractItemView* view,
                        const QStyleOptionViewItem& option, const QModelIndex& index) {
    QString text;
    if (index.data(AppGridModel::SandboxedRole).toBool() &&
        badgeRect(option).adjusted(-4, -4, 4, 4).contains(event->pos())) {
        text = index.data(Qt::AccessibleDescriptionRole).toString();
    } else if (TileText::isElided(index.data().toString(), nameRect(option).width())) {
        text = toolTipText(index.data().toString());
    }
    QToolTip::showText(event->globalPos(), text, view);
    return true;
}

} // namespace quorvel
