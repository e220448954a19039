#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace quorvel::testing {

/// Runs `check` in a child process, where a file system in memory, with the options given
/// ("size=64k"), lies over `folder`; nobody else sees it. Gives the problem that `check` names, the
/// empty text for none; nothing where the kernel forbids it.
[[nodiscard]] std::optional<std::string> onSmallDisk(const std::filesystem::path& folder,
                                                     const std::string& options,
                                                     const std::function<std::string()>& check);

} // namespace quorvel::testing
