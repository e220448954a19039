#pragma once

#include <QCheckBox>
#include <QWidget>

class QLabel;

namespace quorvel {

/// A check box whose label wraps.
class WrappingCheckBox : public QWidget {
    Q_OBJECT

public:
    explicit WrappingCheckBox(const QString& label);

    [[nodiscard]] QCheckBox* box() const { return box_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QCheckBox* box_;
    QLabel* label_;
};

} // namespace quorvel
