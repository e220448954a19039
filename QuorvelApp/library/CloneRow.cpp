#include "QuorvelApp/library/CloneRow.h"

#include "QuorvelApp/Components.h"
#include "QuorvelApp/model/CloneListModel.h"
#include "QuorvelApp/model/DisplayText.h"
#include "QuorvelApp/theme/Theme.h"
#include "QuorvelApp/widgets/CrispPixmap.h"
#include "QuorvelApp/widgets/Sheet.h"

#include <QAbstractItemView>
#include <QFontMetrics>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QToolTip>

namespace quorvel {
namespace {

constexpr int sideMargin = 10;     // from the sidebar's edge to a row's background
constexpr int padding = 8;         // from the background's edge to the content
constexpr int verticalPadding = 4; // of the whole row
constexpr int backgroundGap = 1;   // of the row, above and below the background

void drawText(QPainter* painter, const QRect& rect, const QString& text, TextStyle style,
              const QColor& color, Qt::LayoutDirection direction) {
    const QFont font = fontFor(style);
    painter->setFont(font);
    painter->setPen(color);
    painter->drawText(rect,
                      int(QStyle::visualAlignment(direction, Qt::AlignLeft | Qt::AlignVCenter)),
                      QFontMetrics(font).elidedText(text, Qt::ElideRight, rect.width()));
}

// Whether the focus comes back by itself, once a menu closes or the window is active again.
bool isTemporary(const QFocusEvent& event) {
    return event.reason() == Qt::ActiveWindowFocusReason ||
           event.reason() == Qt::PopupFocusReason || event.reason() == Qt::MenuBarFocusReason;
}

// A sheet gives the focus back when it ends.
bool isBelowSheet(const QWidget* widget) {
    const QWidget* parent = widget->parentWidget();
    while (parent != nullptr && !Sheet::isShownOver(parent)) {
        parent = parent->parentWidget();
    }
    return parent != nullptr;
}

bool isElided(const QString& text, TextStyle style, int width) {
    return QFontMetrics(fontFor(style)).horizontalAdvance(text) > width;
}

} // namespace

CloneRow::CloneRow(IconLoader& icons, QObject* parent)
    : QStyledItemDelegate(parent),
      icons_(icons) {}

CloneRow::Places CloneRow::places(const QStyleOptionViewItem& option) {
    const QRect background =
        option.rect.adjusted(sideMargin, backgroundGap, -sideMargin, -backgroundGap);
    const QRect inner = background.adjusted(padding, 0, -padding, 0);
    const int nameHeight = QFontMetrics(fontFor(TextStyle::body)).height();
    const int summaryHeight = QFontMetrics(fontFor(TextStyle::caption)).height();
    const int top = inner.center().y() + 1 - (nameHeight + summaryHeight) / 2;
    const int textLeft = inner.left() + iconSize + 10;
    const int textWidth = inner.right() - StatusDot::diameter - 8 - textLeft;
    const QRect logical[] = {
        {inner.left(), inner.center().y() + 1 - iconSize / 2, iconSize, iconSize},
        {textLeft, top, textWidth, nameHeight},
        {textLeft, top + nameHeight, textWidth, summaryHeight},
        {inner.right() + 1 - StatusDot::diameter, inner.center().y() + 1 - StatusDot::diameter / 2,
         StatusDot::diameter, StatusDot::diameter}};
    const auto visual = [&](const QRect& rect) {
        return QStyle::visualRect(option.direction, option.rect, rect);
    };
    return {background, visual(logical[0]), visual(logical[1]), visual(logical[2]),
            visual(logical[3])};
}

void CloneRow::paint(QPainter* painter, const QStyleOptionViewItem& option,
                     const QModelIndex& index) const {
    const Colors& colors = colorsFor(option.palette);
    const Places at = places(option);
    const bool selected = option.state.testFlag(QStyle::State_Selected);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    if (selected || option.state.testFlag(QStyle::State_MouseOver)) {
        QColor hover = colors.text;
        hover.setAlphaF(0.06F);
        painter->setPen(Qt::NoPen);
        painter->setBrush(selected ? colors.accent : hover);
        painter->drawRoundedRect(at.background, 6, 6);
    }
    const auto icon = index.data(CloneListModel::IconPathRole).value<std::filesystem::path>();
    drawCrisp(*painter, at.icon,
              icons_.icon(icon, iconSize, painter->device()->devicePixelRatioF()));
    QColor faint = colors.onAccent;
    faint.setAlphaF(0.85F);
    drawText(painter, at.name, index.data(CloneListModel::NameRole).toString(), TextStyle::body,
             selected ? colors.onAccent : colors.text, option.direction);
    drawText(painter, at.summary, index.data(CloneListModel::SummaryRole).toString(),
             TextStyle::caption, selected ? faint : colors.secondary, option.direction);
    if (index.data(CloneListModel::RunningRole).toBool()) {
        painter->setPen(selected ? QPen(colors.onAccent, 1) : QPen(Qt::NoPen));
        painter->setBrush(colors.running);
        painter->drawEllipse(at.dot);
    }
    painter->restore();
}

QSize CloneRow::sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const {
    const int text = QFontMetrics(fontFor(TextStyle::body)).height() +
                     QFontMetrics(fontFor(TextStyle::caption)).height();
    return {0, std::max(iconSize, text) + 2 * verticalPadding};
}

bool CloneRow::helpEvent(QHelpEvent* event, QAbstractItemView* view,
                         const QStyleOptionViewItem& option, const QModelIndex& index) {
    const Places at = places(option);
    QString text;
    if (index.data(CloneListModel::RunningRole).toBool() &&
        at.dot.adjusted(-4, -4, 4, 4).contains(event->pos())) {
        text = tr("Running");
    } else {
        const QString name = index.data(CloneListModel::NameRole).toString();
        const QString summary = index.data(CloneListModel::SummaryRole).toString();
        if (isElided(name, TextStyle::body, at.name.width()) ||
            isElided(summary, TextStyle::caption, at.summary.width())) {
            text = toolTipText(name + u'\n' + summary);
        }
    }
    QToolTip::showText(event->globalPos(), text, view);
    return true;
}

QWidget* CloneRow::createEditor(QWidget* parent, const QStyleOptionViewItem&,
                                const QModelIndex&) const {
    auto* editor = new QLineEdit(parent);
    editor->setObjectName(editorName);
    editor->setAccessibleName(tr("Name"));
    editor->setFont(fontFor(TextStyle::body));
    return editor;
}

void CloneRow::setEditorData(QWidget* editor, const QModelIndex& index) const {
    auto* field = static_cast<QLineEdit*>(editor);
    // The list may change meanwhile, which must not undo what was typed.
    if (!field->isModified()) {
        field->setText(index.data(Qt::EditRole).toString());
        field->selectAll();
    }
}

void CloneRow::setModelData(QWidget* editor, QAbstractItemModel*, const QModelIndex& index) const {
    const QString name = static_cast<QLineEdit*>(editor)->text();
    if (!name.trimmed().isEmpty() && name != index.data(Qt::EditRole).toString()) {
        Q_EMIT nameEntered(index.data(CloneListModel::IdRole).toString(), name);
    }
}

void CloneRow::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                                    const QModelIndex&) const {
    const QRect name = places(option).name;
    const int height = editor->sizeHint().height();
    editor->setGeometry(name.left() - 5, name.center().y() - height / 2, name.width() + 10, height);
}

bool CloneRow::eventFilter(QObject* watched, QEvent* event) {
    auto* editor = qobject_cast<QLineEdit*>(watched);
    if (editor != nullptr && event->type() == QEvent::FocusOut &&
        (isTemporary(*static_cast<QFocusEvent*>(event)) || isBelowSheet(editor))) {
        return false;
    }
    if (editor != nullptr && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Tab || key == Qt::Key_Backtab) {
            Q_EMIT commitData(editor); // and not on to the next clone's name
            Q_EMIT closeEditor(editor);
            return true;
        }
    }
    return QStyledItemDelegate::eventFilter(watched, event);
}

} // namespace quorvel
