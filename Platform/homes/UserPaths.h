#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The user's own folders.
namespace quorvel::UserPaths {

/// Returns the user's home without a trailing slash: `CFFIXED_USER_HOME` if it is an absolute path,
/// otherwise `HOME` (on Linux) or the user database's entry (on macOS), otherwise the other of
/// these two, otherwise "/". Reads the environment on each call.
[[nodiscard]] std::string home();

/// Returns the user's home according to the user database; std::nullopt without an entry.
[[nodiscard]] std::optional<std::string> listedHome();

/// Replaces a leading "~" by `home()` or "~name" by that user's home, and removes trailing slashes.
/// Returns any other path, and one that names an unknown user, unchanged.
[[nodiscard]] std::string expandTilde(std::string_view path);

/// Returns `TMPDIR` if it is an absolute path, otherwise "/tmp", without a trailing slash.
[[nodiscard]] std::filesystem::path temporaryFolder();

/// Returns all homes that may be the user's: `home()`, the user database's and `HOME`. None of them
/// may ever be deleted.
[[nodiscard]] std::vector<std::string> allHomes();

/// Another user's home according to the user database.
struct OtherHome {
    std::string user{};
    std::string home{};
};

/// Returns the homes of other users in the user database that exist and belong to them.
[[nodiscard]] std::vector<OtherHome> otherUsersHomes();

} // namespace quorvel::UserPaths
