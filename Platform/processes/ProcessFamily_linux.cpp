#include "Platform/processes/ProcessFamily.h"

#include "Base/BundleLayout.h"
#include "Platform/files/FileReading.h"
#include "Platform/files/ItemIdentity.h"
#include "Platform/processes/Process.h"
#include "Platform/processes/ProcessStat_linux.h"

#include <chrono>
#include <cstdlib>
#include <map>
#include <optional>
#include <string_view>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace quorvel {
namespace {

bool hasEnded(const ProcessStat& stat) {
    return stat.state == 'Z' || stat.state == 'X';
}

std::string placeInProc(pid_t pid, const std::string& name) {
    return "/proc/" + std::to_string(pid) + "/" + name;
}

template<typename Predicate>
std::vector<ProcessIdentity> processesWhere(const Predicate& matches) {
    std::vector<ProcessIdentity> found;
    for (const pid_t pid : allProcesses()) {
        if (!matches(pid)) {
            continue;
        }
        const auto stat = processStat(pid);
        if (stat && !hasEnded(*stat)) {
            found.push_back({pid, stat->started});
        }
    }
    return found;
}

std::string environmentOf(pid_t pid) {
    constexpr std::size_t limit = std::size_t{8} << 20U;
    return readFile(placeInProc(pid, "environ"), limit).value_or(std::string());
}

// A process has no environment while it becomes another program.
std::string settledEnvironmentOf(pid_t pid) {
    constexpr int naps = 10;
    std::string environment = environmentOf(pid);
    for (int count = 0; count < naps && environment.empty(); ++count) {
        const auto stat = processStat(pid);
        if (!stat || hasEnded(*stat)) {
            break;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        environment = environmentOf(pid);
    }
    return environment;
}

// Returns the HOME that the process was started with; of this one, which it has now.
std::optional<std::string> homeOf(pid_t pid,
                                  std::string (*readEnvironment)(pid_t) = environmentOf) {
    if (pid == ownPid()) {
        const char* home = std::getenv("HOME");
        return home == nullptr ? std::nullopt : std::optional<std::string>(home);
    }
    const std::string text = '\0' + readEnvironment(pid) + '\0';
    const std::string name("\0HOME=", 6);
    const std::size_t start = text.find(name);
    if (start == std::string::npos) {
        return std::nullopt;
    }
    const std::size_t value = start + name.size();
    return text.substr(value, text.find('\0', value) - value);
}

} // namespace

std::vector<ProcessIdentity> descendantsOf(pid_t root, const std::function<bool(pid_t)>& isApart) {
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
            if (isApart && isApart(child->second)) {
                continue;
            }
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

bool hasLeftClone(pid_t process, pid_t runner) {
    if (::getsid(process) == ::getsid(runner)) {
        return false; // without reading anything, as for nearly every process
    }
    const auto home = homeOf(runner);
    const auto homeOfProcess = homeOf(process, settledEnvironmentOf);
    const auto stat = processStat(process);
    // Not every clone changes HOME, and then what it starts has the runner's.
    return home && stat && homeOfProcess == home &&
           (stat->parent == runner || homeOf(stat->parent) != home);
}

bool haveSameHome(pid_t process, pid_t other) {
    const auto home = homeOf(process, settledEnvironmentOf);
    return home && home == homeOf(other);
}

std::vector<ProcessIdentity> cloneProcesses(pid_t runner) {
    return descendantsOf(runner, [&](pid_t process) { return hasLeftClone(process, runner); });
}

std::vector<ProcessIdentity> processesWithHome(const std::string& home) {
    return processesWhere([&](pid_t pid) { return homeOf(pid) == home; });
}

std::vector<ProcessIdentity> processesOf(const std::filesystem::path& program) {
    const std::string bundle = bundleOfExecutable(program.native());
    return processesWhere([&](pid_t pid) {
        const std::string file = programOf(pid);
        std::string_view path = file;
        constexpr std::string_view removed = " (deleted)";
        if (path == program.native()) {
            return true;
        }
        path.remove_suffix(path.ends_with(removed) ? removed.size() : 0);
        // A replaced bundle is, or was, in a hidden folder.
        return path == program.native() ||
               (!bundle.empty() && path.ends_with("/" + program.filename().native()) &&
                bundleOfExecutable(path) == bundle);
    });
}

std::vector<ProcessIdentity> processesOfScript(const std::filesystem::path& script) {
    constexpr std::size_t limit = std::size_t{4} << 20U;
    return processesWhere([&](pid_t pid) {
        const std::string words = readFile(placeInProc(pid, "cmdline"), limit).value_or("");
        std::size_t start = words.find('\0');
        for (int word = 0; word < 2 && start != std::string::npos; ++word) {
            const std::size_t end = words.find('\0', start + 1);
            if (words.substr(start + 1, end - start - 1) == script) {
                return true;
            }
            start = end;
        }
        return false;
    });
}

std::vector<ProcessIdentity> processesKeeping(const std::filesystem::path& item) {
    const auto wanted = identityOf(item);
    const std::string name = "fd/" + std::to_string(Process::keptDescriptor);
    return processesWhere([&](pid_t pid) {
        struct stat status {};
        return wanted && ::stat(placeInProc(pid, name).c_str(), &status) == 0 &&
               identityOf(status) == *wanted;
    });
}

bool isRunningSince(pid_t pid, std::time_t date) {
    constexpr std::chrono::seconds inaccuracy{2};
    const auto stat = processStat(pid);
    return stat && !hasEnded(*stat) &&
           std::chrono::system_clock::now() - ageOf(*stat) <=
               std::chrono::system_clock::from_time_t(date) + inaccuracy;
}

bool isRunning(const ProcessIdentity& process) {
    const auto stat = processStat(process.pid);
    return stat && stat->started == process.started && !hasEnded(*stat);
}

} // namespace quorvel
