#pragma once

#include <QTranslator>

namespace quorvel {

/// Translates the window's texts into the words of this system, as `inSystemWords` does. The
/// application installs it before any catalogue of another language, which takes precedence.
class SystemTranslator final : public QTranslator {
public:
    [[nodiscard]] bool isEmpty() const override { return false; }
    [[nodiscard]] QString translate(const char* context, const char* text,
                                    const char* disambiguation, int count) const override;
};

} // namespace quorvel
