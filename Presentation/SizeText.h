#pragma once

#include <cstdint>
#include <string>

namespace quorvel {

/// Returns a size in bytes as a readable text, rounded down: "734 bytes", "1.5 kB", "2.0 GB".
[[nodiscard]] std::string sizeText(std::uintmax_t bytes);

} // namespace quorvel
