#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace quorvel {

/// Returns the bytes of a regular file that belongs to the current user and that no other user may
/// read or write. Returns std::nullopt for any other item, a link to such a file, and a file of
/// more than `limit` bytes. Never blocks.
[[nodiscard]] std::optional<std::string> readPrivateFile(const std::string& path,
                                                         std::size_t limit);

} // namespace quorvel
