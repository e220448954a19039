#pragma once

#include <QColor>

#include <string>

namespace quorvel {

/// Returns "#RRGGBB" in sRGB, without the opacity; white for a color that has no such form.
[[nodiscard]] std::string hexRGB(const QColor& color);

} // namespace quorvel
