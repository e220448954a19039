#include "QuorvelApp/widgets/Sheet.h"

#include "QuorvelApp/theme/Theme.h"

#include <QAbstractButton>
#include <QApplication>
#include <QEvent>
#include <QPainter>

#include <algorithm>

namespace quorvel {
namespace {

using namespace Qt::StringLiterals;

constexpr int margin = 24;

// A widget's children are in the order in which they are stacked.
QList<Sheet*> sheetsOver(const QWidget* window) {
    QList<Sheet*> sheets = window->findChildren<Sheet*>(Qt::FindDirectChildrenOnly);
    sheets.removeIf([](const Sheet* sheet) { return sheet->isHidden(); });
    return sheets;
}

void sayThatSheetsChanged(QWidget* window) {
    QEvent event(Sheet::changeEvent());
    QCoreApplication::sendEvent(window, &event);
}

} // namespace

Sheet::Sheet(QDialog* dialog, QWidget* window, Place place, QSize ideal)
    : QWidget(window),
      dialog_(dialog),
      place_(place),
      ideal_(ideal),
      focusBefore_(window->window()->focusWidget()) {
    // A dialog that is not a window stays inside this one.
    dialog_->setParent(this, Qt::Widget);
    dialog_->setObjectName(u"sheetCard"_s);
    dialog_->setAttribute(Qt::WA_StyledBackground);
    connect(dialog_, &QDialog::finished, this, &Sheet::end);
    window->installEventFilter(this);
    dialog_->installEventFilter(this);
    qApp->installEventFilter(this);
    arrange();
    show();
    takePlace();
    dialog_->show();
    shownSheets().constLast()->takeFocus();
    sayThatSheetsChanged(window);
}

bool Sheet::isShownOver(const QWidget* window) {
    return !sheetsOver(window).isEmpty();
}

bool Sheet::isShownOver(const QWidget* window, Place place) {
    const QList<Sheet*> sheets = sheetsOver(window);
    return std::any_of(sheets.begin(), sheets.end(),
                       [place](const Sheet* sheet) { return sheet->place_ == place; });
}

QEvent::Type Sheet::changeEvent() {
    static const int type = QEvent::registerEventType();
    return static_cast<QEvent::Type>(type);
}

void Sheet::takePlace() {
    raise();
    for (Sheet* other : shownSheets()) {
        if (place_ == Place::top && other->place_ == Place::middle) {
            stackUnder(other);
            return;
        }
    }
}

void Sheet::takeFocus() {
    QWidget* const first = dialog_->focusWidget();
    if (dialog_->isAncestorOf(window()->focusWidget())) {
        return;
    }
    if (first != nullptr && first != dialog_ && first->isEnabled()) {
        first->setFocus();
    } else {
        focusNextPrevChild(true);
    }
}

QList<Sheet*> Sheet::shownSheets() const {
    return sheetsOver(parentWidget());
}

bool Sheet::eventFilter(QObject* watched, QEvent* event) {
    const bool resized = watched == parentWidget() && event->type() == QEvent::Resize;
    if (resized || (watched == dialog_ && event->type() == QEvent::LayoutRequest)) {
        arrange();
    } else if (event->type() == QEvent::Shortcut && covers(watched)) {
        return true; // a mnemonic of a button that can't be clicked
    }
    return QWidget::eventFilter(watched, event);
}

bool Sheet::covers(const QObject* watched) const {
    const auto* button = qobject_cast<const QAbstractButton*>(watched);
    return button != nullptr && button->window() == window() && isVisible() &&
           !isAncestorOf(button) && shownSheets().constLast() == this;
}

void Sheet::arrange() {
    setGeometry(parentWidget()->rect());
    const QSize available = size() - QSize(2 * margin, place_ == Place::top ? margin : 2 * margin);
    const QSize wanted = ideal_.isValid() ? ideal_ : dialog_->sizeHint();
    const QSize given = wanted.boundedTo(available);
    const int left = (width() - given.width()) / 2;
    const int top = place_ == Place::top ? std::min(44, (height() - given.height()) / 2)
                                         : (height() - given.height()) * 2 / 5;
    dialog_->setGeometry(QRect(QPoint(left, top), given));
}

bool Sheet::focusNextPrevChild(bool next) {
    QWidget* const current = window()->focusWidget();
    QWidget* const start = dialog_->isAncestorOf(current) ? current : dialog_;
    for (QWidget* widget = next ? start->nextInFocusChain() : start->previousInFocusChain();
         widget != start;
         widget = next ? widget->nextInFocusChain() : widget->previousInFocusChain()) {
        if (dialog_->isAncestorOf(widget) && widget->isVisibleTo(dialog_) && widget->isEnabled() &&
            (widget->focusPolicy() & Qt::TabFocus) == Qt::TabFocus &&
            widget->focusProxy() == nullptr) {
            widget->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
            return true;
        }
    }
    return true;
}

void Sheet::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(rect(), colorsFor(palette()).scrim);
}

void Sheet::end() {
    hide();
    const QList<Sheet*> others = shownSheets();
    for (Sheet* other : others) {
        if (isAncestorOf(other->focusBefore_)) {
            other->focusBefore_ = focusBefore_;
        }
    }
    if (!others.isEmpty()) {
        others.constLast()->takeFocus();
    } else if (focusBefore_) {
        focusBefore_->setFocus();
    }
    sayThatSheetsChanged(parentWidget());
    deleteLater();
}

} // namespace quorvel
