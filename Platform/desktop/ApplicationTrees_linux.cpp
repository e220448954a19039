#include "Platform/desktop/ApplicationTrees_linux.h"

#include "Platform/files/FileReading.h"
#include "Platform/processes/ProcessStat_linux.h"

#include <algorithm>
#include <charconv>
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

std::set<pid_t> lockWaiters(std::string_view locks) {
    std::set<pid_t> waiters;
    while (!locks.empty()) {
        const std::size_t end = std::min(locks.find('\n'), locks.size());
        const std::string_view line = locks.substr(0, end);
        locks.remove_prefix(std::min(end + 1, locks.size()));
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

std::vector<RunningApplication> onePerApplication(std::vector<RunningApplication> processes) {
    Bundles bundles = bundlesWithSeveral(processes);
    Parents parents;
    for (auto& [bundle, members] : bundles) {
        const std::set<pid_t> all = members;
        std::erase_if(members, [&](pid_t pid) { return parents.anyAbove(pid, all); });
    }
    keep(processes, bundles);

    bundles = bundlesWithSeveral(processes);
    constexpr std::size_t limit = std::size_t{16} << 20U;
    const auto locks = bundles.empty() ? std::nullopt : readFile("/proc/locks", limit);
    if (locks) {
        const std::set<pid_t> waiters = lockWaiters(*locks);
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
