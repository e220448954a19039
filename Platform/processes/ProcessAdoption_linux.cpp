#include "Platform/processes/ProcessAdoption.h"

#include "Platform/processes/ProcessStat_linux.h"

#include <sys/prctl.h>
#include <unistd.h>

namespace quorvel {

void adoptOrphans() noexcept {
    (void)::prctl(PR_SET_CHILD_SUBREAPER, 1UL);
}

std::vector<pid_t> runningChildren() {
    std::vector<pid_t> children;
    for (const pid_t pid : allProcesses()) {
        const auto stat = processStat(pid);
        if (stat && stat->parent == ::getpid() && stat->state != 'Z') {
            children.push_back(pid);
        }
    }
    return children;
}

} // namespace quorvel
