#pragma once

#include "LaunchKit/Records/EnumNames.h"

#include <string>

namespace quorvel {

/// A short text drawn onto a clone's icon.
struct IconLabel {
    /// Where on the icon the text is drawn.
    enum class Position { bottom, center, top };

    std::string text{};
    std::string colorHex{}; ///< six hexadecimal digits, with or without "#"
    Position position = Position::bottom;

    bool operator==(const IconLabel&) const = default;
};

template<>
inline constexpr auto enumNames<IconLabel::Position> = namesOfAllCases<IconLabel::Position>({
    {IconLabel::Position::bottom, "bottom"},
    {IconLabel::Position::center, "center"},
    {IconLabel::Position::top, "top"},
});

} // namespace quorvel
