#pragma once

#include "Presentation/CloneFacts.h"

#include <QString>
#include <QWidget>

class QLabel;

namespace quorvel {

class WrappingText;

/// A label and its value, which can be selected and copied.
class InfoRow : public QWidget {
    Q_OBJECT

public:
    static constexpr int labelWidth = 92;

    explicit InfoRow(const Fact& fact);

    [[nodiscard]] QString label() const;
    [[nodiscard]] QString value() const;

private:
    QLabel* label_;
    WrappingText* value_;
};

} // namespace quorvel
