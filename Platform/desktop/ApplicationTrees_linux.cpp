#include "Platform/desktop/ApplicationTrees_linux.h"

#include "Platform/processes/LockWaiters_linux.h"
#include "Platform/processes/ProcessStat_linux.h"

#include <algorithm>
#include <map>

namespace quorvel {
namespace {

using Bundles = std::map<std::string, std::set<pid_t>>;

class Parents {
public:
    // Whether one of `wanted` is an ancestor of the process.
    [[nodiscard]] bool anyAbove(pid_t pid, const std::set<pid_t>& wanted) {
        constexpr int highest = 256; // changes meanwhile may look like a cycle
        pid = parentOf(pid);
        for (int level = 0; level < highest && pid > 1; ++level, pid = parentOf(pid)) {
            if (wanted.contains(pid)) {
                return true;
            }
        }
        return false;
    }

private:
    pid_t parentOf(pid_t pid) {
        const auto [known, isNew] = parents_.try_emplace(pid, 0);
        if (isNew) {
            const auto stat = processStat(pid);
            known->second = stat ? stat->parent : 0;
        }
        return known->second;
    }

    std::map<pid_t, pid_t> parents_{};
};

// Returns the bundles with more than one process.
Bundles bundlesWithSeveral(const std::vector<RunningApplication>& processes) {
    Bundles bundles;
    for (const RunningApplication& process : processes) {
        bundles[process.bundleURL.native()].insert(process.pid);
    }
    std::erase_if(bundles, [](const auto& bundle) { return bundle.second.size() < 2; });
    return bundles;
}

void keep(std::vector<RunningApplication>& processes, const Bundles& kept) {
    std::erase_if(processes, [&](const RunningApplication& process) {
        const auto bundle = kept.find(process.bundleURL.native());
        return bundle != kept.end() && !bundle->second.contains(process.pid);
    });
}

} // namespace

std::vector<RunningApplication> onePerApplication(std::vector<RunningApplication> processes) {
    Bundles bundles = bundlesWithSeveral(processes);
    Parents parents;
    for (auto& [bundle, members] : bundles) {
        const std::set<pid_t> all = members;
        std::erase_if(members, [&](pid_t pid) { return parents.anyAbove(pid, all); });
    }
    keep(processes, bundles);

    bundles = bundlesWithSeveral(processes);
    if (!bundles.empty()) {
        const std::set<pid_t> waiters = processesWaitingForLocks();
        for (auto& [bundle, members] : bundles) {
            const pid_t first = *members.begin();
            std::erase_if(members, [&](pid_t pid) { return waiters.contains(pid); });
            if (members.empty()) {
                members.insert(first);
            }
        }
        keep(processes, bundles);
    }
    return processes;
}

} // namespace quorvel
