#pragma once

#include <QWidget>

namespace quorvel {

/// A dot that is green while the clone is running.
class StatusDot : public QWidget {
    Q_OBJECT

public:
    static constexpr int diameter = 7;

    explicit StatusDot(QWidget* parent = nullptr);

    /// Shows whether the clone runs.
    void setRunning(bool running);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool running_ = false;
};

} // namespace quorvel
