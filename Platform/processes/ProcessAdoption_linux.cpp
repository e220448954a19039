#include "Platform/processes/ProcessAdoption.h"

#include "Platform/processes/ProcessFamily.h"

#include <cstdlib>
#include <sys/prctl.h>
#include <unistd.h>

namespace quorvel {

void adoptOrphans() noexcept {
    (void)::prctl(PR_SET_CHILD_SUBREAPER, 1UL);
}

std::vector<pid_t> runningChildren() {
    const char* home = std::getenv("HOME");
    std::vector<pid_t> children;
    for (const ProcessIdentity& child : childrenOf(::getpid())) {
        if (home == nullptr || !hasHome(child.pid, home)) {
            children.push_back(child.pid);
        }
    }
    return children;
}

} // namespace quorvel
