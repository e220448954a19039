#pragma once

#include <filesystem>
#include <functional>
#include <string>

namespace quorvel::testing {

/// How `onSmallDisk` went.
enum class OnSmallDisk { passed, failed, notPermitted };

/// Runs `check` in a child process, where a file system in memory, with the options given
/// ("size=64k"), lies over `folder`; nobody else sees it. What `check` says went wrong is printed;
/// `passed` when it says nothing. It must use no assertions: nobody hears them.
[[nodiscard]] OnSmallDisk onSmallDisk(const std::filesystem::path& folder,
                                      const std::string& options,
                                      const std::function<std::string()>& check);

} // namespace quorvel::testing
