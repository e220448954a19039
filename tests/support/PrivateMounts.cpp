#include "tests/support/PrivateMounts.h"

#include "Platform/files/FileHandle.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sched.h>
#include <stdexcept>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quorvel::testing {
namespace {

constexpr int notPermitted = 77;

bool writeTo(const char* file, const std::string& text) {
    const FileHandle handle(::open(file, O_WRONLY | O_CLOEXEC));
    return handle.descriptor() >= 0 && handle.write(text);
}

std::string problemOf(const std::function<std::string()>& check) {
    try {
        return check();
    } catch (const std::exception& error) {
        return error.what();
    }
}

std::string readAll(int descriptor) {
    std::string text;
    std::array<char, 4096> buffer{};
    for (ssize_t count = 0; (count = ::read(descriptor, buffer.data(), buffer.size())) > 0;) {
        text.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return text;
}

} // namespace

bool hasOwnMounts() {
    const std::string user = std::to_string(::geteuid());
    const std::string group = std::to_string(::getegid());
    if (::unshare(CLONE_NEWNS) != 0 && (::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0 ||
                                        !writeTo("/proc/self/uid_map", "0 " + user + " 1") ||
                                        !writeTo("/proc/self/setgroups", "deny") ||
                                        !writeTo("/proc/self/gid_map", "0 " + group + " 1"))) {
        return false;
    }
    return ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

std::optional<std::string> inPrivateMounts(const std::function<std::string()>& check) {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    FileHandle output(ends[1]);
    const FileHandle input(ends[0]);
    const pid_t child = ::fork();
    if (child == 0) {
        if (!hasOwnMounts()) {
            std::_Exit(notPermitted);
        }
        output.write(problemOf(check));
        std::_Exit(0);
    }
    output = FileHandle(-1);
    std::string problem = readAll(input.descriptor());
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child || !WIFEXITED(status)) {
        return "the child did not end by itself";
    }
    return WEXITSTATUS(status) == notPermitted ? std::nullopt : std::optional(std::move(problem));
}

void bindMount(const std::filesystem::path& source, const std::filesystem::path& at) {
    if (::mount(source.c_str(), at.c_str(), nullptr, MS_BIND, nullptr) != 0) {
        throw std::runtime_error("can't mount at " + at.string());
    }
}

bool mountWithoutAnswers(const std::filesystem::path& at) {
    const int device = ::open("/dev/fuse", O_RDWR | O_CLOEXEC);
    const std::string options = "fd=" + std::to_string(device) +
                                ",rootmode=40000,user_id=" + std::to_string(::getuid()) +
                                ",group_id=" + std::to_string(::getgid());
    return device >= 0 && ::mount("none", at.c_str(), "fuse", 0, options.c_str()) == 0;
}

} // namespace quorvel::testing
