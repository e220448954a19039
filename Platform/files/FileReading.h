#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quorvel {

/// Returns the bytes of a regular file (links followed), or std::nullopt if it is unreadable, is
/// not a regular file, or has more than `limit` bytes. Never blocks on a FIFO or a device. Takes
/// the path as text, because parsing thousands of paths would cost more than reading the files.
[[nodiscard]] std::optional<std::string> readFile(const std::string& path, std::size_t limit);

/// Returns whether the regular file at `path` (links followed) has exactly these bytes. Reads no
/// further than the first difference, and nothing if the sizes differ.
[[nodiscard]] bool hasContents(const std::string& path, std::string_view bytes);

/// Reads the file at `path`, relative to the open folder `folder`, into `bytes`. Returns false
/// where `readFile` returns std::nullopt; `bytes` is unspecified then.
[[nodiscard]] bool readFileIn(int folder, const std::string& path, std::size_t limit,
                              std::string& bytes);

/// Returns what the symbolic link `name` in the open folder `folder` leads to, as it is spelled;
/// std::nullopt, with `errno`, if it is not a link.
[[nodiscard]] std::optional<std::string> linkTargetIn(int folder, const char* name);

} // namespace quorvel
