#include "tests/support/InotifyLimit.h"

#include <fcntl.h>
#include <sched.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace quorvel::testing {
namespace {

bool writeSetting(const char* file, const std::string& text) {
    const int descriptor = ::open(file, O_WRONLY | O_CLOEXEC);
    const bool written = descriptor >= 0 && ::write(descriptor, text.data(), text.size()) ==
                                                static_cast<ssize_t>(text.size());
    ::close(descriptor);
    return written;
}

const char* fileOf(InotifyLimit limit) {
    return limit == InotifyLimit::watches ? "/proc/sys/user/max_inotify_watches"
                                          : "/proc/sys/user/max_inotify_instances";
}

} // namespace

bool limitInotify(InotifyLimit limit, int count) {
    const std::string map = "0 " + std::to_string(::geteuid()) + " 1";
    return ::unshare(CLONE_NEWUSER) == 0 && writeSetting("/proc/self/uid_map", map) &&
           writeSetting(fileOf(limit), std::to_string(count));
}

bool holdsInChild(const std::function<bool()>& body) {
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(body() ? 0 : 1);
    }
    int status = 0;
    return child > 0 && ::waitpid(child, &status, 0) == child && WIFEXITED(status) &&
           WEXITSTATUS(status) == 0;
}

} // namespace quorvel::testing
