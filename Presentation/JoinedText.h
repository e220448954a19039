#pragma once

#include "Presentation/Translation.h"

#include <string>
#include <string_view>
#include <vector>

namespace quorvel {

/// Returns the parts in their order, with `separator` between them.
[[nodiscard]] std::string joined(const std::vector<std::string>& parts, std::string_view separator);

/// Returns "KEY=VALUE".
[[nodiscard]] std::string keyValueLine(const std::string& key, const std::string& value);

/// Returns the items, one per line, and after the first few the number of others: an alert has
/// space for only a few.
[[nodiscard]] std::string shortList(const std::vector<std::string>& items,
                                    const Translate& translate);

} // namespace quorvel
