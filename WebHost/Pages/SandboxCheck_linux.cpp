#include "WebHost/Pages/SandboxCheck_linux.h"

#include "Platform/files/FileReading.h"
#include "Platform/files/FileSystem.h"
#include "Platform/processes/ProcessFamily.h"

#include <algorithm>
#include <string_view>
#include <unistd.h>

namespace quorvel {
namespace {

constexpr std::size_t limit = 65536;

std::string fileOf(pid_t process, const char* name) {
    return readFile("/proc/" + std::to_string(process) + "/" + name, limit).value_or("");
}

// The values of a line of /proc/PID/status.
std::string_view valuesIn(std::string_view status, const std::string& name) {
    const std::string key = "\n" + name + ":\t";
    const std::size_t at = status.find(key);
    const std::string_view rest =
        at == std::string_view::npos ? std::string_view() : status.substr(at + key.size());
    return rest.substr(0, rest.find('\n'));
}

// How many namespaces for process numbers the process is in, counted from the reader's.
std::ptrdiff_t depthIn(std::string_view status) {
    const std::string_view numbers = valuesIn(status, "NSpid");
    return std::count(numbers.begin(), numbers.end(), '\t');
}

// The kernel cuts names to 15 bytes.
bool isPagesProcess(pid_t process) {
    return fileOf(process, "comm").starts_with("WebKitWebProces");
}

} // namespace

bool isSandboxed(std::string_view page, std::string_view own) {
    constexpr std::string_view filtered = "2";
    return valuesIn(page, "Seccomp") == filtered && depthIn(page) > depthIn(own);
}

std::string sandboxProblem() {
    const std::string own = fileOf(::getpid(), "status");
    bool isFound = false;
    for (const ProcessIdentity& process : descendantsOf(::getpid())) {
        if (!isPagesProcess(process.pid)) {
            continue;
        }
        isFound = true;
        if (!isSandboxed(fileOf(process.pid, "status"), own)) {
            return std::string("pages run without their sandbox") +
                   (itemExists("/.flatpak-info")
                        ? ", because there is a file /.flatpak-info; remove it"
                        : "");
        }
    }
    return isFound ? "" : "can’t tell whether pages are sandboxed: no page process was found";
}

} // namespace quorvel
