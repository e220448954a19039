#pragma once

#include "QuorvelApp/theme/Symbols.h"

#include <QWidget>

namespace quorvel {

/// An activity indicator that spins while it is visible.
class Spinner : public QWidget {
    Q_OBJECT

public:
    /// `size` is in points.
    explicit Spinner(int size, Ink ink = Ink::secondary, QWidget* parent = nullptr);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    Ink ink_;
    int step_ = 0;
    int timer_ = 0;
};

} // namespace quorvel
