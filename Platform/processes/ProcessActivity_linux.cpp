#include "Platform/processes/ProcessActivity.h"

#include "Platform/desktop/ApplicationTrees_linux.h"
#include "Platform/files/FileReading.h"
#include "Platform/processes/ProcessFamily.h"
#include "Platform/processes/ProcessStat_linux.h"

#include <algorithm>
#include <set>
#include <unistd.h>
#include <vector>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

std::set<pid_t> processesWaitingForLocks() {
    constexpr std::size_t limit = std::size_t{16} << 20U;
    const auto locks = readFile("/proc/locks", limit);
    return locks ? lockWaiters(*locks) : std::set<pid_t>{};
}

std::chrono::milliseconds fromTicks(std::uint64_t ticks) {
    const auto perSecond = static_cast<std::uint64_t>(::sysconf(_SC_CLK_TCK));
    return std::chrono::milliseconds(ticks * 1000 / perSecond);
}

} // namespace

ProcessActivity activityOf(pid_t process) {
    std::vector<pid_t> family{process};
    for (const ProcessIdentity& descendant : descendantsOf(process)) {
        family.push_back(descendant.pid);
    }
    const std::set<pid_t> waiters = processesWaitingForLocks();
    ProcessActivity activity;
    std::uint64_t ticks = 0;
    for (const pid_t pid : family) {
        if (const auto stat = processStat(pid)) {
            ticks += stat->cpuTime;
            activity.wantsToRun = activity.wantsToRun || stat->state == 'R' || stat->state == 'D';
            activity.waitsForLock = activity.waitsForLock || waiters.contains(pid);
        }
    }
    activity.cpuTime = fromTicks(ticks);
    return activity;
}

bool isRunningWithHome(const fs::path& executable, const std::string& home) {
    std::error_code code;
    const fs::path file = fs::canonical(executable, code);
    const auto processes = code ? std::vector<ProcessIdentity>{} : processesWithHome(home);
    return std::any_of(processes.begin(), processes.end(), [&](const ProcessIdentity& process) {
        std::error_code unreadable;
        const fs::path running =
            fs::read_symlink("/proc/" + std::to_string(process.pid) + "/exe", unreadable);
        return !unreadable && running == file;
    });
}

} // namespace quorvel
