#include "Platform/processes/ProcessFamily.h"

#include "Platform/files/FileReading.h"
#include "Platform/processes/ProcessStat_linux.h"

#include <map>

namespace quorvel {
namespace {

bool hasEnded(const ProcessStat& stat) {
    return stat.state == 'Z' || stat.state == 'X';
}

} // namespace

std::vector<ProcessIdentity> descendantsOf(pid_t root) {
    std::map<pid_t, ProcessStat> table;
    std::multimap<pid_t, pid_t> children;
    for (const pid_t pid : allProcesses()) {
        if (const auto stat = processStat(pid)) {
            table.emplace(pid, *stat);
            children.emplace(stat->parent, pid);
        }
    }
    std::vector<ProcessIdentity> found;
    std::vector<pid_t> above{root};
    while (!above.empty()) {
        const auto [first, last] = children.equal_range(above.back());
        above.pop_back();
        for (auto child = first; child != last; ++child) {
            const ProcessStat& stat = table.at(child->second);
            above.push_back(child->second);
            if (!hasEnded(stat)) {
                found.push_back({child->second, stat.started});
            }
        }
        children.erase(first,
                       last); // even if the table contains a cycle, each process is visited once
    }
    return found;
}

std::vector<ProcessIdentity> childrenOf(pid_t parent) {
    std::vector<ProcessIdentity> found;
    for (const pid_t pid : allProcesses()) {
        const auto stat = processStat(pid);
        if (stat && stat->parent == parent && !hasEnded(*stat)) {
            found.push_back({pid, stat->started});
        }
    }
    return found;
}

bool hasHome(pid_t pid, const std::string& home) {
    constexpr std::size_t limit = std::size_t{8} << 20U;
    std::string wanted(1, '\0');
    wanted += "HOME=" + home + '\0';
    const auto environment = readFile("/proc/" + std::to_string(pid) + "/environ", limit);
    return environment && ('\0' + *environment + '\0').find(wanted) != std::string::npos;
}

std::vector<ProcessIdentity> processesWithHome(const std::string& home) {
    std::vector<ProcessIdentity> found;
    for (const pid_t pid : allProcesses()) {
        const auto stat = processStat(pid);
        if (stat && !hasEnded(*stat) && hasHome(pid, home)) {
            found.push_back({pid, stat->started});
        }
    }
    return found;
}

bool isRunning(const ProcessIdentity& process) {
    const auto stat = processStat(process.pid);
    return stat && stat->started == process.started && !hasEnded(*stat);
}

} // namespace quorvel
