#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quorvel {

/// A short text drawn onto a clone's icon.
struct IconLabel {
    /// Where on the icon the text sits.
    enum class Position { bottom, center, top };

    std::string text{};
    std::string colorHex{}; ///< six hexadecimal digits, with or without "#"
    Position position = Position::bottom;

    bool operator==(const IconLabel&) const = default;
};

/// "bottom", "center" or "top".
[[nodiscard]] std::string_view rawString(IconLabel::Position position);

/// Nothing for any other text.
[[nodiscard]] std::optional<IconLabel::Position>
iconLabelPositionFromRawString(std::string_view text);

} // namespace quorvel
