#include "Platform/processes/LockWaiters_linux.h"

#include "Base/SplitText.h"
#include "Platform/files/FileReading.h"

#include <charconv>

namespace quorvel {

std::set<pid_t> lockWaiters(std::string_view locks) {
    std::set<pid_t> waiters;
    while (!locks.empty()) {
        const std::string_view line = takePart(locks, '\n');
        // 7: -> FLOCK  ADVISORY  WRITE 4711 fe:01:1234 0 EOF
        std::size_t at = line.find("-> ");
        for (int word = 0; word < 4 && at != std::string_view::npos; ++word) {
            at = line.find_first_not_of(' ', line.find(' ', at));
        }
        pid_t pid = 0;
        if (at != std::string_view::npos &&
            std::from_chars(line.data() + at, line.data() + line.size(), pid).ec == std::errc{}) {
            waiters.insert(pid);
        }
    }
    return waiters;
}

std::set<pid_t> processesWaitingForLocks() {
    constexpr std::size_t limit = std::size_t{16} << 20U;
    const auto locks = readFile("/proc/locks", limit);
    return locks ? lockWaiters(*locks) : std::set<pid_t>{};
}

} // namespace quorvel
