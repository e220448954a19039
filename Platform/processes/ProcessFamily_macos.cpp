#include "Platform/processes/ProcessFamily.h"

#include <cerrno>
#include <csignal>
#include <libproc.h>

namespace quorvel {

std::vector<ProcessIdentity> descendantsOf(pid_t root) {
    constexpr std::size_t most = 4096; // children of one process, and descendants altogether
    std::vector<ProcessIdentity> found;
    std::vector<pid_t> children(most);
    for (std::size_t next = 0; next <= found.size() && found.size() < most; ++next) {
        const pid_t parent = next == 0 ? root : found[next - 1].pid;
        const int count = proc_listchildpids(parent, children.data(),
                                             static_cast<int>(children.size() * sizeof(pid_t)));
        for (int index = 0; index < count; ++index) {
            found.push_back({children[static_cast<std::size_t>(index)], 0});
        }
    }
    return found;
}

std::vector<ProcessIdentity> processesWithHome(const std::string& /*home*/) {
    return {};
}

bool isRunning(const ProcessIdentity& process) {
    return ::kill(process.pid, 0) == 0 || errno == EPERM;
}

} // namespace quorvel
