#include "WebHost/SandboxCheck_linux.h"

#include "Platform/files/FileReading.h"
#include "Platform/files/FileSystem.h"
#include "Platform/processes/ProcessFamily.h"

#include <charconv>
#include <unistd.h>

namespace quorvel {
namespace {

constexpr std::size_t limit = 65536;

std::string fileOf(pid_t process, const char* name) {
    return readFile("/proc/" + std::to_string(process) + "/" + name, limit).value_or("");
}

// The kernel cuts names to 15 bytes.
bool isPagesProcess(pid_t process) {
    return fileOf(process, "comm").starts_with("WebKitWebProces");
}

} // namespace

std::optional<int> seccompModeIn(std::string_view status) {
    constexpr std::string_view key = "\nSeccomp:\t";
    const std::size_t at = status.find(key);
    if (at == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view rest = status.substr(at + key.size());
    int mode = 0;
    const auto result = std::from_chars(rest.data(), rest.data() + rest.size(), mode);
    return result.ec == std::errc{} ? std::optional(mode) : std::nullopt;
}

std::string sandboxProblem() {
    constexpr int filtered = 2;
    for (const ProcessIdentity& process : descendantsOf(::getpid())) {
        if (isPagesProcess(process.pid) &&
            seccompModeIn(fileOf(process.pid, "status")) != filtered) {
            return std::string("pages run without their sandbox") +
                   (itemExists("/.flatpak-info")
                        ? ", because there is a file /.flatpak-info; remove it"
                        : "");
        }
    }
    return {};
}

} // namespace quorvel
