#pragma once

#include "Platform/desktop/RunningApplications.h"

#include <ctime>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace quorvel {

/// Finds the applications that run from bundles in one pass over /proc, one per tree of processes
/// (see `onePerApplication`). A process counts if its executable, or the script that it interprets,
/// is directly in NAME.app/Contents/MacOS. Unreadable processes are skipped. Thread-safe.
class ProcessTable {
public:
    /// Returns the applications that are running now.
    [[nodiscard]] std::vector<RunningApplication> applications();

private:
    // A bundle's identifier is read again only if its property list has changed.
    struct KnownBundle {
        std::optional<std::string> bundleId{}; ///< absent: unreadable
        ino_t inode = 0;
        off_t size = 0;
        timespec modified{};
    };

    [[nodiscard]] const std::string* identifierOf(const std::string& bundle);

    std::mutex mutex_;
    std::map<std::string, KnownBundle> known_;
};

/// Waits until a process that was just started has a command line, without which a script's process
/// would not be recognized. Stops waiting after about a second.
void awaitCommandLine(pid_t pid);

} // namespace quorvel
