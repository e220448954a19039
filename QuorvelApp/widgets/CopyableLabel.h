#pragma once

#include "QuorvelApp/theme/Symbols.h"
#include "QuorvelApp/theme/Theme.h"

#include <QLabel>
#include <QString>

namespace quorvel {

/// A label whose text a person may select, and whose copy is the text itself, whatever was done to
/// it to fit the screen.
class CopyableLabel : public QLabel {
    Q_OBJECT

public:
    CopyableLabel(TextStyle style, Ink ink);

    virtual void setFullText(const QString& text);
    [[nodiscard]] QString fullText() const { return full_; }
    /// What a copy of the selection gives; empty when nothing is selected.
    [[nodiscard]] virtual QString selectionToCopy() const;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    void copy() const;

    QString full_{};
};

/// Text that wraps over as many lines as it needs, within long words too.
class WrappingText : public CopyableLabel {
    Q_OBJECT

public:
    explicit WrappingText(TextStyle style, Ink ink = Ink::text);

    void setFullText(const QString& text) override;
};

/// One line that gives up its middle or end when it lacks room, and tells the whole in a tooltip
/// then.
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
