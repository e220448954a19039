#pragma once

#include <string>

namespace quorvel {

/// The same JSON with every "/" escaped: the form in which the system writes its files.
[[nodiscard]] std::string escapingSlashes(const std::string& json);

} // namespace quorvel
