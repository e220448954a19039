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
/// (see `onePerApplication`). A process counts
/// when its executable, or for an interpreted script the script, lies directly in
/// NAME.app/Contents/MacOS. What vanishes or may not be read is skipped.
class ProcessTable {
public:
    [[nodiscard]] std::vector<RunningApplication> applications();

private:
    // A bundle's identifier is read once and again only when its property list changed.
    struct KnownBundle {
        std::optional<std::string> bundleId{}; ///< absent: not readable
        ino_t inode = 0;
        off_t size = 0;
        timespec modified{};
    };

    [[nodiscard]] const std::string* identifierOf(const std::string& bundle);

    std::mutex mutex_;
    std::map<std::string, KnownBundle> known_;
};

/// Waits until a process that was just started can be known by its command line: for a moment it
/// has none, and a script would not count. Gives up after about a second.
void awaitCommandLine(pid_t pid);

} // namespace quorvel
