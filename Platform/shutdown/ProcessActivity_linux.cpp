#include "Platform/shutdown/ProcessActivity.h"

#include "Platform/processes/LockWaiters_linux.h"
#include "Platform/processes/ProcessFamily.h"
#include "Platform/processes/ProcessStat_linux.h"

#include <algorithm>
#include <set>
#include <vector>

namespace quorvel {
namespace fs = std::filesystem;

ProcessActivity activityOf(pid_t process) {
    std::vector<pid_t> family{process};
    for (const ProcessIdentity& descendant : descendantsOf(process)) {
        family.push_back(descendant.pid);
    }
    const std::set<pid_t> waiters = processesWaitingForLocks();
    ProcessActivity activity;
    for (const pid_t pid : family) {
        if (const auto stat = processStat(pid)) {
            activity.cpuTime += stat->cpuTime;
            activity.wantsToRun = activity.wantsToRun || stat->state == 'R' || stat->state == 'D';
            activity.waitsForLock = activity.waitsForLock || waiters.contains(pid);
        }
    }
    return activity;
}

bool isRunningWithHome(const fs::path& executable, const std::string& home) {
    std::error_code code;
    const fs::path file = fs::canonical(executable, code);
    const auto processes = code ? std::vector<ProcessIdentity>{} : processesWithHome(home);
    return std::any_of(processes.begin(), processes.end(), [&](const ProcessIdentity& process) {
        return programOf(process.pid) == file;
    });
}

} // namespace quorvel
