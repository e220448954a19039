#include "QuorvelApp/widgets/HexColor.h"

#include <array>
#include <cmath>
#include <cstdio>

namespace quorvel {

std::string hexRGB(const QColor& color) {
    const QColor rgb = color.isValid() ? color.toRgb() : QColor(Qt::white);
    const auto byte = [](float part) { return static_cast<unsigned>(std::lround(part * 255.0F)); };
    std::array<char, 8> text{};
    (void)std::snprintf(text.data(), text.size(), "#%02X%02X%02X", byte(rgb.redF()) & 0xFFU,
                        byte(rgb.greenF()) & 0xFFU, byte(rgb.blueF()) & 0xFFU);
    return text.data();
}

} // namespace quorvel
