#include "LaunchKit/Icons/IcnsPalette.h"

#include <cstddef>

namespace quorvel {
namespace {

constexpr std::uint32_t opaque = 0xFF000000;

// A cube of six steps from white to black without the black, a ramp of each primary and of gray
// in the steps that the cube lacks, and black.
constexpr std::array<std::uint32_t, 256> systemColors() {
    std::array<std::uint32_t, 256> colors{};
    std::size_t index = 0;
    for (; index < 215; ++index) {
        const auto step = static_cast<std::uint32_t>(index);
        const std::uint32_t red = 0xFF - 0x33 * (step / 36);
        const std::uint32_t green = 0xFF - 0x33 * (step / 6 % 6);
        const std::uint32_t blue = 0xFF - 0x33 * (step % 6);
        colors[index] = opaque | red << 16U | green << 8U | blue;
    }
    constexpr std::array<std::uint32_t, 10> ramp{0xEE, 0xDD, 0xBB, 0xAA, 0x88,
                                                 0x77, 0x55, 0x44, 0x22, 0x11};
    for (const std::uint32_t primary : {0x010000U, 0x000100U, 0x000001U, 0x010101U}) {
        for (const std::uint32_t level : ramp) {
            colors[index++] = opaque | primary * level;
        }
    }
    colors[index] = opaque;
    return colors;
}

} // namespace

const std::array<std::uint32_t, 16>& icnsColors16() {
    static constexpr std::array<std::uint32_t, 16> colors{
        0xFFFFFFFF, 0xFFFCF305, 0xFFFF6402, 0xFFDD0806, 0xFFF20884, 0xFF4600A5,
        0xFF0000D4, 0xFF02ABEA, 0xFF1FB714, 0xFF006411, 0xFF562C05, 0xFF90713A,
        0xFFC0C0C0, 0xFF808080, 0xFF404040, 0xFF000000};
    return colors;
}

const std::array<std::uint32_t, 256>& icnsColors256() {
    static constexpr std::array<std::uint32_t, 256> colors = systemColors();
    return colors;
}

} // namespace quorvel
