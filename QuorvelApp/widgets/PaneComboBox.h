#pragma once

#include <QComboBox>

namespace quorvel {

/// A combo box that leaves the wheel to the pane that contains it.
class PaneComboBox : public QComboBox {
    Q_OBJECT

public:
    using QComboBox::QComboBox;

protected:
    void wheelEvent(QWheelEvent* event) override;
};

} // namespace quorvel
