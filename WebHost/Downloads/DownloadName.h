#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// What downloaded files are called.
namespace quorvel {

/// The longest name of a download, in bytes. Leaves room for a number before the system's limit.
inline constexpr std::size_t longestDownloadName = 240;

/// Returns a safe file name close to the one that a page suggests: no folder, not hidden, not an
/// option of a command, without unsafe characters, and not too long. Its extension is kept.
[[nodiscard]] std::string safeDownloadName(std::string_view suggested);

/// Returns the name for the copy of that number: "a (2).txt" for "a.txt"; 1 changes nothing.
[[nodiscard]] std::string numberedName(std::string_view name, int number);

} // namespace quorvel
