#pragma once

#include "QuorvelApp/theme/Symbols.h"
#include "QuorvelApp/theme/Theme.h"

#include <QLabel>
#include <QString>

namespace quorvel {

/// A label whose text can be selected. Copying yields the full text, without the changes
/// that make it fit the screen.
class CopyableLabel : public QLabel {
    Q_OBJECT

public:
    CopyableLabel(TextStyle style, Ink ink);

    /// Sets the text to show and to copy.
    virtual void setFullText(const QString& text);
    [[nodiscard]] QString fullText() const { return full_; }
    /// Returns what copying the selection yields; empty if nothing is selected.
    [[nodiscard]] virtual QString selectionToCopy() const;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    void copy() const;

    QString full_{};
};

/// Text that wraps over as many lines as it needs, even inside long words.
class WrappingText : public CopyableLabel {
    Q_OBJECT

public:
    explicit WrappingText(TextStyle style, Ink ink = Ink::text);

    void setFullText(const QString& text) override;
};

/// One line, elided in the middle or at the end if it doesn't fit; a tooltip then shows the full
/// text.
class ElidedLabel : public CopyableLabel {
    Q_OBJECT

public:
    ElidedLabel(TextStyle style, Ink ink, Qt::TextElideMode mode = Qt::ElideRight);

    void setFullText(const QString& text) override;
    [[nodiscard]] QString selectionToCopy() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] QSize sizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void elide();

    Qt::TextElideMode mode_;
};

} // namespace quorvel
