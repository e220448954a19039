#include "Platform/shutdown/ProcessAdoption.h"

#include "Platform/processes/Process.h"
#include "Platform/processes/ProcessFamily.h"

#include <sys/prctl.h>

namespace quorvel {

void adoptOrphans() noexcept {
    (void)::prctl(PR_SET_CHILD_SUBREAPER, 1UL);
}

std::vector<pid_t> runningChildren() {
    std::vector<pid_t> children;
    for (const ProcessIdentity& child : childrenOf(ownPid())) {
        if (!hasLeftClone(child.pid, ownPid())) {
            children.push_back(child.pid);
        }
    }
    return children;
}

} // namespace quorvel
