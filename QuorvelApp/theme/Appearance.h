#pragma once

#include "Platform/desktop/ColorScheme.h"

#include <QObject>

#include <memory>

namespace quorvel {

/// Keeps the application's palette, style and style sheet in step with the desktop's appearance,
/// from construction on and while it runs.
class Appearance : public QObject {
    Q_OBJECT

public:
    explicit Appearance(QObject* parent = nullptr);

    /// Puts this appearance on, whatever the desktop says, until it changes.
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
