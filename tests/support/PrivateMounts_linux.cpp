#include "tests/support/PrivateMounts.h"

#include "Platform/FileHandle.h"

#include <cstdlib>
#include <exception>
#include <fcntl.h>
#include <iostream>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quorvel::testing {
namespace {

bool writeTo(const char* file, const std::string& text) {
    const FileHandle handle(::open(file, O_WRONLY | O_CLOEXEC));
    return handle.descriptor() >= 0 && handle.write(text);
}

// Gives this process mounts of its own: as it is, or as the root of a user namespace.
bool hasOwnMounts() {
    if (::unshare(CLONE_NEWNS) != 0) {
        const std::string user = std::to_string(::geteuid());
        const std::string group = std::to_string(::getegid());
        if (::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0 ||
            !writeTo("/proc/self/uid_map", "0 " + user + " 1") ||
            !writeTo("/proc/self/setgroups", "deny") ||
            !writeTo("/proc/self/gid_map", "0 " + group + " 1")) {
            return false;
        }
    }
    return ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

OnSmallDisk resultOf(const std::function<std::string()>& check) {
    std::string problem;
    try {
        problem = check();
    } catch (const std::exception& error) {
        problem = error.what();
    }
    std::cerr << problem << (problem.empty() ? "" : "\n");
    return problem.empty() ? OnSmallDisk::passed : OnSmallDisk::failed;
}

} // namespace

OnSmallDisk onSmallDisk(const std::filesystem::path& folder, const std::string& options,
                        const std::function<std::string()>& check) {
    const pid_t child = ::fork();
    if (child == 0) {
        OnSmallDisk result = OnSmallDisk::notPermitted;
        if (hasOwnMounts() && ::mount("none", folder.c_str(), "tmpfs", 0, options.c_str()) == 0) {
            result = resultOf(check);
            ::umount2(folder.c_str(), MNT_DETACH);
        }
        std::_Exit(static_cast<int>(result));
    }
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child || !WIFEXITED(status)) {
        return OnSmallDisk::failed;
    }
    return static_cast<OnSmallDisk>(WEXITSTATUS(status));
}

} // namespace quorvel::testing
