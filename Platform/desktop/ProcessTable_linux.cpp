#include "Platform/desktop/ProcessTable_linux.h"

#include "Base/BundleLayout.h"
#include "Base/BundleName.h"
#include "Platform/desktop/ApplicationTrees_linux.h"
#include "Platform/files/FileHandle.h"
#include "Platform/files/PropertyListFile.h"
#include "Platform/processes/ProcessStat_linux.h"
#include "Platform/programs/LauncherScript.h"

#include <algorithm>
#include <chrono>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

std::string readLink(const std::string& link) {
    char target[4096];
    const ssize_t length = ::readlink(link.c_str(), target, sizeof target);
    return {target, length < 0 ? 0 : static_cast<std::size_t>(length)};
}

// Returns the first page of a file, which contains a script's path in a command line.
std::string readStart(const std::string& path) {
    const FileHandle file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
    char bytes[4096];
    const ssize_t length =
        file.descriptor() < 0 ? -1 : ::read(file.descriptor(), bytes, sizeof bytes);
    return {bytes, length < 0 ? 0 : static_cast<std::size_t>(length)};
}

// Returns the script from an interpreter's command line: its first argument that is not an option,
// which the script's first line may have.
std::optional<std::string> scriptArgument(const std::string& commandLine) {
    std::size_t at = commandLine.find('\0');
    while (at != std::string::npos && at + 1 < commandLine.size()) {
        const std::size_t end = commandLine.find('\0', at + 1);
        std::string argument = commandLine.substr(at + 1, end - at - 1);
        if (!argument.starts_with('-')) {
            return argument;
        }
        at = end;
    }
    return std::nullopt;
}

// Whether the script's first line names the executable. A program that only has the script's path
// as an argument, such as an editor, does not run it.
bool isInterpreterOf(const fs::path& script, const std::string& executable,
                     const std::string& calledAs) {
    std::error_code ignored;
    if (!fs::is_regular_file(script, ignored)) {
        return false;
    }
    const std::string interpreter = interpreterOf(readStart(script));
    if (interpreter.find('/') != std::string::npos) {
        return fs::canonical(interpreter, ignored).native() == executable;
    }
    // The name may be a link, such as sh to dash, or lack a version, such as python3 for
    // python3.11.
    return !interpreter.empty() &&
           (calledAs == interpreter ||
            fs::path(executable).filename().native().starts_with(interpreter));
}

// Returns the bundle of the script that a process runs. `process` is its folder below /proc.
std::string bundleOfScript(const std::string& process, const std::string& executable) {
    const std::string commandLine = readStart(process + "/cmdline");
    const std::optional<std::string> script = scriptArgument(commandLine);
    // The system always passes a script's path to its interpreter with a slash.
    if (!script || script->find('/') == std::string::npos) {
        return {};
    }
    const fs::path folder = script->front() == '/' ? "/" : readLink(process + "/cwd");
    std::error_code code;
    const fs::path path = fs::canonical(folder / *script, code);
    std::string bundle = code ? std::string{} : bundleOfExecutable(path.native());
    const std::string calledAs = commandLine.substr(0, commandLine.find('\0'));
    const bool runs = !bundle.empty() && isInterpreterOf(path, executable, calledAs);
    return runs ? bundle : std::string{};
}

} // namespace

void awaitCommandLine(pid_t pid) {
    constexpr int patience = 1000;
    const std::string process = "/proc/" + std::to_string(pid);
    for (int waited = 0;
         waited < patience && !programOf(pid).empty() && readStart(process + "/cmdline").empty();
         ++waited) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

const std::string* ProcessTable::identifierOf(const std::string& bundle) {
    const std::string file = infoPlistOf(bundle);
    struct stat status {};
    if (::stat(file.c_str(), &status) != 0) {
        return nullptr;
    }
    KnownBundle& known = known_[bundle];
    if (known.inode != status.st_ino || known.size != status.st_size ||
        known.modified.tv_sec != status.st_mtim.tv_sec ||
        known.modified.tv_nsec != status.st_mtim.tv_nsec) {
        const auto dictionary = readPropertyList(file, {"CFBundleIdentifier"});
        known = {std::nullopt, status.st_ino, status.st_size, status.st_mtim};
        if (dictionary) {
            known.bundleId = PropertyList::stringFor(*dictionary, "CFBundleIdentifier")
                                 .value_or(bundleFallbackName(bundle));
        }
    }
    return known.bundleId ? &*known.bundleId : nullptr;
}

std::vector<RunningApplication> ProcessTable::applications() {
    const std::lock_guard guard(mutex_);
    std::vector<RunningApplication> found;
    for (const pid_t pid : allProcesses()) {
        const std::string process = "/proc/" + std::to_string(pid);
        const std::string executable = programOf(pid);
        if (executable.empty()) {
            continue;
        }
        std::string bundle = bundleOfExecutable(executable);
        if (bundle.empty()) {
            bundle = bundleOfScript(process, executable);
        }
        const std::string* bundleId = bundle.empty() ? nullptr : identifierOf(bundle);
        if (bundleId != nullptr) {
            found.push_back({*bundleId, bundle, pid});
        }
    }
    return onePerApplication(std::move(found));
}

} // namespace quorvel
