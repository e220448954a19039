#pragma once

#include <filesystem>
#include <string>
#include <string_view>

/// Paths as text. Nothing here looks at the disk.
namespace quorvel {

/// Returns `base` + "/" + `name`. `operator/` would drop `base` if `name` begins with "/".
[[nodiscard]] std::string joinAsText(std::string base, std::string_view name);
[[nodiscard]] std::filesystem::path joinAsText(const std::filesystem::path& base,
                                               std::string_view name);

/// Returns `path` without the slashes at its end. "/" itself is kept.
[[nodiscard]] std::string withoutTrailingSlashes(std::string path);
[[nodiscard]] std::filesystem::path withoutTrailingSlashes(const std::filesystem::path& path);

/// Returns what follows the last slash: an empty text if that is at the end.
[[nodiscard]] constexpr std::string_view baseName(std::string_view path) noexcept {
    return path.substr(path.rfind('/') + 1); // npos + 1 is 0
}

/// Returns what follows the last slash, ignoring slashes at the end: "b" for "/a/b//". Returns "/"
/// for a path that consists of slashes, and an empty text for an empty path.
[[nodiscard]] std::string lastPathComponent(const std::filesystem::path& path);

/// Returns whether `path` is `folder`, which has no slash at its end, or lies in it.
[[nodiscard]] bool isAtOrBelow(std::string_view path, std::string_view folder) noexcept;

/// Returns a list of folders, separated by ":" as in `PATH`, without those that are `folder` or lie
/// in it.
[[nodiscard]] std::string withoutFoldersBelow(std::string_view list, std::string_view folder);

/// Returns whether the text contains a NUL byte, at which system calls would cut it off.
[[nodiscard]] bool hasNul(const std::string& text) noexcept;
[[nodiscard]] bool hasNul(const std::filesystem::path& path) noexcept;

} // namespace quorvel
