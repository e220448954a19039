#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

/// Where the user's own folders are.
namespace quorvel::UserPaths {

/// The user's home: `CFFIXED_USER_HOME` when set and absolute, else the user database's entry, else
/// `HOME`, else "/". Without a slash at the end. The
/// environment is asked anew at each call.
[[nodiscard]] std::string home();

/// A leading "~" or "~/" becomes `home()`, "~name" and "~name/" that user's home, and slashes at
/// the end go; any other path, and one that names an unknown user, comes back unchanged.
[[nodiscard]] std::string expandTilde(std::string_view path);

/// `TMPDIR` when set, else "/tmp". Without a slash at the end.
[[nodiscard]] std::filesystem::path temporaryFolder();

/// Every home that may be the user's: the one in force, the user database's and `HOME`'s. None of
/// them may ever be deleted.
[[nodiscard]] std::vector<std::string> allHomes();

/// Another user's home, by what the user database says.
struct OtherHome {
    std::string user{};
    std::string home{};
};

/// The homes that belong to other users: those that they own. Asks the user database.
[[nodiscard]] std::vector<OtherHome> otherUsersHomes();

} // namespace quorvel::UserPaths
