#pragma once

#include "Platform/desktop/ColorScheme.h"

#include <QObject>

#include <memory>

namespace quorvel {

/// Keeps the application's palette, style and style sheet in step with the desktop's appearance for
/// as long as it lives.
class Appearance : public QObject {
    Q_OBJECT

public:
    explicit Appearance(QObject* parent = nullptr);

    /// Applies this appearance instead of the desktop's, until the desktop's changes.
    static void apply(ColorScheme scheme);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void follow();
    [[nodiscard]] ColorScheme preferred() const;

    ColorScheme desktopPalette_;
    std::unique_ptr<ColorSchemeSource> desktop_;
};

} // namespace quorvel
