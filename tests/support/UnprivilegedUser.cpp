#include "tests/support/UnprivilegedUser.h"

#include <cstdlib>
#include <exception>
#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quorvel::testing {
namespace {

constexpr uid_t nobody = 65534;

bool becomesUnprivileged() {
    return ::getuid() != 0 ||
           (::setgroups(0, nullptr) == 0 && ::setgid(nobody) == 0 && ::setuid(nobody) == 0);
}

} // namespace

bool asUnprivilegedUser(const std::filesystem::path& folder, const std::function<bool()>& check) {
    if (::getuid() == 0 && ::chown(folder.c_str(), nobody, nobody) != 0) {
        return false;
    }
    const pid_t child = ::fork();
    if (child == 0) {
        bool passed = false;
        try {
            passed = becomesUnprivileged() && check();
        } catch (const std::exception&) {
            passed = false;
        }
        std::_Exit(passed ? 0 : 1);
    }
    int status = 1;
    return child > 0 && ::waitpid(child, &status, 0) == child && status == 0;
}

} // namespace quorvel::testing
