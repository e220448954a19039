#include "Platform/processes/ProcessFamily.h"

#include <libproc.h>
#include <optional>

namespace quorvel {
namespace {

// Returns std::nullopt for a process that has ended, zombies included. Unlike most of what libproc
// reports, this is available for other users' processes too.
std::optional<ProcessIdentity> identityOf(pid_t pid) {
    constexpr std::uint64_t microseconds = 1'000'000;
    proc_bsdinfo info{};
    if (proc_pidinfo(pid, PROC_PIDTBSDINFO, 0, &info, sizeof info) !=
        static_cast<int>(sizeof info)) {
        return std::nullopt;
    }
    return ProcessIdentity{pid, info.pbi_start_tvsec * microseconds + info.pbi_start_tvusec};
}

} // namespace

std::vector<ProcessIdentity> childrenOf(pid_t parent) {
    constexpr std::size_t most = 4096;
    std::vector<pid_t> children(most);
    const int count = proc_listchildpids(parent, children.data(),
                                         static_cast<int>(children.size() * sizeof(pid_t)));
    std::vector<ProcessIdentity> found;
    for (int index = 0; index < count; ++index) {
        if (const auto child = identityOf(children[static_cast<std::size_t>(index)])) {
            found.push_back(*child);
        }
    }
    return found;
}

std::vector<ProcessIdentity> descendantsOf(pid_t root, const std::function<bool(pid_t)>& isApart) {
    constexpr std::size_t most = 4096;
    std::vector<ProcessIdentity> found;
    for (std::size_t next = 0; next <= found.size() && found.size() < most; ++next) {
        for (const ProcessIdentity& child : childrenOf(next == 0 ? root : found[next - 1].pid)) {
            if (!isApart || !isApart(child.pid)) {
                found.push_back(child);
            }
        }
    }
    return found;
}

bool hasLeftClone(pid_t /*process*/, pid_t /*runner*/) {
    return false;
}

bool haveSameHome(pid_t /*process*/, pid_t /*other*/) {
    return false;
}

std::vector<ProcessIdentity> cloneProcesses(pid_t runner) {
    return descendantsOf(runner);
}

std::vector<ProcessIdentity> processesWithHome(const std::string& /*home*/) {
    return {};
}

std::vector<ProcessIdentity> processesOf(const std::filesystem::path& program) {
    constexpr std::size_t most = 16384;
    std::vector<pid_t> all(most);
    const int count = proc_listallpids(all.data(), static_cast<int>(all.size() * sizeof(pid_t)));
    std::vector<ProcessIdentity> found;
    for (int index = 0; index < count; ++index) {
        const pid_t pid = all[static_cast<std::size_t>(index)];
        char file[PROC_PIDPATHINFO_MAXSIZE];
        const auto process = proc_pidpath(pid, file, sizeof file) > 0 && program == file
                                 ? identityOf(pid)
                                 : std::nullopt;
        if (process) {
            found.push_back(*process);
        }
    }
    return found;
}

std::vector<ProcessIdentity> processesOfScript(const std::filesystem::path& /*script*/) {
    return {};
}

std::vector<ProcessIdentity> processesKeeping(const std::filesystem::path& /*item*/) {
    return {};
}

bool isRunningSince(pid_t pid, std::time_t date) {
    constexpr std::uint64_t microseconds = 1'000'000;
    constexpr std::uint64_t inaccuracy = 2;
    const auto process = identityOf(pid);
    return process &&
           process->started / microseconds <= static_cast<std::uint64_t>(date) + inaccuracy;
}

bool isRunning(const ProcessIdentity& process) {
    return identityOf(process.pid) == process;
}

} // namespace quorvel
