#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quorvel {

/// Returns a text of a page, for a place that shows several lines: without unsafe characters except
/// line breaks, and truncated with "…" after `longest` characters.
[[nodiscard]] std::string pageText(std::string_view raw, std::size_t longest);

} // namespace quorvel
