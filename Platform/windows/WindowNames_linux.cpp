// quorvel-window-names WORD PID: sets the class WORD on the X11 windows of the clone whose runner
// is PID, its parent, for applications that have no option for it. Ends with its parent.
#include "Platform/processes/ProcessFamily.h"
#include "Platform/windows/X11Windows_linux.h"

#include <csignal>
#include <cstdlib>
#include <set>
#include <sys/prctl.h>
#include <unistd.h>

namespace quorvel {
namespace {

void nameWindows(const X11Windows& windows, pid_t parent, const std::string& word) {
    std::set<pid_t> processes;
    for (const ProcessIdentity& process : cloneProcesses(parent)) {
        processes.insert(process.pid);
    }
    for (const X11Window& window : windows.list()) {
        // An application may set its own again.
        if (processes.contains(window.pid) &&
            (window.instance != word || window.className != word || window.desktopFile != word)) {
            windows.setIdentity(window.id, word);
        }
    }
}

int run(const std::string& word, const std::string& runner) {
    constexpr std::chrono::milliseconds longest{5000};
    // Given as an argument: if the runner has ended already, `getppid` returns another process.
    const auto parent = static_cast<pid_t>(std::strtol(runner.c_str(), nullptr, 10));
    (void)::prctl(PR_SET_PDEATHSIG, static_cast<unsigned long>(SIGTERM));
    const auto windows = X11Windows::connect();
    while (windows && ::getppid() == parent && windows->waitForChanges(longest)) {
        nameWindows(*windows, parent, word);
    }
    return 0;
}

} // namespace
} // namespace quorvel

int main(int argc, char** argv) {
    return argc == 3 ? quorvel::run(argv[1], argv[2]) : 2;
}
