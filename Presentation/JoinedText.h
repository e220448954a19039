#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quorvel {

/// Returns the parts in their order, with `separator` between them.
[[nodiscard]] std::string joined(const std::vector<std::string>& parts, std::string_view separator);

} // namespace quorvel
