#pragma once

#include <string>
#include <string_view>

namespace quorvel {

/// Returns a hash of the bytes as 16 hexadecimal digits. It is the same in every program and on
/// every machine, and not meant to withstand an attacker.
[[nodiscard]] std::string stableHash(std::string_view bytes);

} // namespace quorvel
