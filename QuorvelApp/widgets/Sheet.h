#pragma once

#include <QDialog>
#include <QEvent>
#include <QPointer>
#include <QWidget>

namespace quorvel {

/// A dialog inside its window: the window darkens, and nothing below receives mouse or focus until
/// the dialog ends. Shows itself, and deletes itself and the dialog afterwards. Dialogs in the
/// middle stay above those at the top. The topmost one has the focus; when the last one closes, the
/// focus returns to where it was before the first.
class Sheet : public QWidget {
    Q_OBJECT

public:
    /// Whether the dialog is at the window's top or in its middle.
    enum class Place { top, middle };

    /// Takes ownership of `dialog`. `ideal` is its size in points if the window has the space; an
    /// invalid one leaves the size to the dialog.
    Sheet(QDialog* dialog, QWidget* window, Place place, QSize ideal = {});

    [[nodiscard]] QDialog* dialog() const { return dialog_; }

    /// Returns whether a sheet shows over `window`.
    [[nodiscard]] static bool isShownOver(const QWidget* window);
    /// Returns whether a sheet shows at that place over `window`.
    [[nodiscard]] static bool isShownOver(const QWidget* window, Place place);
    /// Returns the type of the event that a window gets when a sheet over it appears or ends.
    [[nodiscard]] static QEvent::Type changeEvent();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void paintEvent(QPaintEvent* event) override;

private:
    /// Returns whether `watched` is a button of the window below this sheet, which is the topmost.
    [[nodiscard]] bool covers(const QObject* watched) const;
    /// Returns the visible sheets of the same window, this one included, bottom to top.
    [[nodiscard]] QList<Sheet*> shownSheets() const;
    void takePlace();
    void takeFocus();
    void arrange();
    void end();

    QDialog* dialog_;
    Place place_;
    QSize ideal_;
    QPointer<QWidget> focusBefore_;
};

} // namespace quorvel
