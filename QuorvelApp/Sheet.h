#pragma once

#include <QDialog>
#include <QPointer>
#include <QWidget>

namespace quorvel {

/// A dialog inside its window: the window darkens, and nothing below takes the mouse or the focus
/// until the dialog ends. Shows itself, and deletes itself and the dialog afterwards.
class Sheet : public QWidget {
    Q_OBJECT

public:
    /// Whether the dialog hangs from the window's top or stands in its middle.
    enum class Place { top, middle };

    /// Takes `dialog` over. `ideal` is its size where the window has the room; an invalid one
    /// leaves the size to the dialog.
    Sheet(QDialog* dialog, QWidget* window, Place place, QSize ideal = {});

    [[nodiscard]] QDialog* dialog() const { return dialog_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void paintEvent(QPaintEvent* event) override;

private:
    /// Whether it is a button of the window's that lies below.
    [[nodiscard]] bool covers(const QObject* watched) const;
    void arrange();
    void end();

    QDialog* dialog_;
    Place place_;
    QSize ideal_;
    QPointer<QWidget> focusBefore_;
};

} // namespace quorvel
