#pragma once

#include <QComboBox>

namespace quorvel {

/// A combo box whose list has the style sheet, and that leaves the wheel to the pane that contains
/// it.
class PaneComboBox : public QComboBox {
    Q_OBJECT

public:
    explicit PaneComboBox(QWidget* parent = nullptr);

protected:
    void wheelEvent(QWheelEvent* event) override;
};

} // namespace quorvel
