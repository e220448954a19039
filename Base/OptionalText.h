#pragma once

#include <optional>
#include <string>
#include <utility>

namespace quorvel {

/// Returns the text; `std::nullopt` if it is empty.
[[nodiscard]] inline std::optional<std::string> nothingIfEmpty(std::string text) {
    return text.empty() ? std::nullopt : std::optional(std::move(text));
}

} // namespace quorvel
