#pragma once

#include <filesystem>
#include <functional>
#include <string>

namespace quorvel::testing {

/// How `onLoopDisk` ended.
struct LoopDiskResult {
    std::string skipped{}; ///< why there could be no such disk; empty if there was one
    std::string problem{}; ///< as `check` named it; empty for none
};

/// Runs `check` in a child process where a new file system of that kind ("btrfs"), of 400 MiB in a
/// file, is mounted over `folder`.
[[nodiscard]] LoopDiskResult onLoopDisk(const std::filesystem::path& folder,
                                        const std::string& kind,
                                        const std::function<std::string()>& check);

} // namespace quorvel::testing
