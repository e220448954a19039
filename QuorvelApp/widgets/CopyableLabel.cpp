#include "QuorvelApp/widgets/CopyableLabel.h"

#include "QuorvelApp/Components.h"
#include "QuorvelApp/model/DisplayText.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QResizeEvent>

namespace quorvel {

CopyableLabel::CopyableLabel(TextStyle textStyle, Ink ink) {
    styleLabel(this, textStyle, ink);
    setTextInteractionFlags(Qt::TextSelectableByMouse);
}

void CopyableLabel::setFullText(const QString& text) {
    full_ = text;
    setAccessibleName(text);
}

QString CopyableLabel::selectionToCopy() const {
    return selectedText().remove(breakMark);
}

void CopyableLabel::copy() const {
    QApplication::clipboard()->setText(selectionToCopy());
}

void CopyableLabel::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy) && hasSelectedText()) {
        copy();
    } else {
        QLabel::keyPressEvent(event);
    }
}

void CopyableLabel::mouseReleaseEvent(QMouseEvent* event) {
    QLabel::mouseReleaseEvent(event);
    if (hasSelectedText() && QApplication::clipboard()->supportsSelection()) {
        QApplication::clipboard()->setText(selectionToCopy(), QClipboard::Selection);
    }
}

void CopyableLabel::contextMenuEvent(QContextMenuEvent* event) {
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(tr("&Copy"), this, &CopyableLabel::copy)->setEnabled(hasSelectedText());
    menu->addAction(tr("Select &All"), this,
                    [this] { setSelection(0, static_cast<int>(text().size())); });
    menu->popup(event->globalPos());
}

WrappingText::WrappingText(TextStyle textStyle, Ink ink) : CopyableLabel(textStyle, ink) {
    setWordWrap(true);
}

void WrappingText::setFullText(const QString& text) {
    if (text == fullText()) {
        return; // keeps the selection
    }
    CopyableLabel::setFullText(text);
    setText(breakable(text));
}

ElidedLabel::ElidedLabel(TextStyle textStyle, Ink ink, Qt::TextElideMode mode)
    : CopyableLabel(textStyle, ink),
      mode_(mode) {
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void ElidedLabel::setFullText(const QString& text) {
    if (text == fullText()) {
        return;
    }
    CopyableLabel::setFullText(text);
    updateGeometry();
    elide();
}

QString ElidedLabel::selectionToCopy() const {
    // A selection that spans the ellipsis copies the full text.
    return selectedText().contains(QChar(0x2026)) && text() != fullText() ? fullText()
                                                                          : selectedText();
}

QSize ElidedLabel::minimumSizeHint() const {
    return {0, QLabel::minimumSizeHint().height()};
}

QSize ElidedLabel::sizeHint() const {
    return {fontMetrics().horizontalAdvance(fullText()) + 2, QLabel::sizeHint().height()};
}

void ElidedLabel::resizeEvent(QResizeEvent* event) {
    QLabel::resizeEvent(event);
    elide();
}

void ElidedLabel::elide() {
    const QString shown = fontMetrics().elidedText(fullText(), mode_, width());
    setText(shown);
    setToolTip(shown == fullText() ? QString() : toolTipText(fullText()));
}

} // namespace quorvel
