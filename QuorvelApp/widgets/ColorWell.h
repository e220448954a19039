#pragma once

#include <QColor>
#include <QPushButton>

namespace quorvel {

/// A button that shows a color and lets the user choose another.
class ColorWell : public QPushButton {
    Q_OBJECT

public:
    explicit ColorWell(QWidget* parent = nullptr);

    /// Shows another color.
    void setColor(const QColor& color);
    [[nodiscard]] QSize sizeHint() const override { return {44, 24}; }

Q_SIGNALS:
    void colorChosen(const QColor& color);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void choose();

    QColor color_ = Qt::white;
};

} // namespace quorvel
