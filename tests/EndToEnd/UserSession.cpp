#include "tests/EndToEnd/UserSession.h"

#include "tests/EndToEnd/Programs.h"
#include "tests/support/Waiting.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <stdexcept>
#include <unistd.h>

namespace quorvel::testing {
namespace fs = std::filesystem;
namespace {

constexpr uid_t nobody = 65534;
constexpr auto longestStart = std::chrono::seconds(60);
constexpr auto longestRun = std::chrono::minutes(2);

// The environment and the command line of what belongs to the session name its folder.
bool isOf(const std::string& folder, pid_t pid) {
    return read("/proc/" + std::to_string(pid) + "/environ").find(folder) != std::string::npos;
}

} // namespace

std::vector<std::string> UserSession::missingPrograms() {
    std::vector<std::string> missing;
    for (const char* program : {"/usr/bin/Xvfb", "/usr/bin/dbus-daemon", "/usr/bin/setpriv",
                                "/usr/bin/openbox", "/usr/bin/xdotool"}) {
        if (!fs::exists(program)) {
            missing.emplace_back(program);
        }
    }
    return missing;
}

UserSession::UserSession() {
    home = folder_ / "home";
    fs::permissions(folder_.path(), fs::perms{0755});
    fs::create_directory(home);
    fs::create_directory(folder_ / "run");
    fs::permissions(folder_ / "run", fs::perms{0700});
    for (const fs::path& item : {folder_.path(), home, folder_ / "run"}) {
        giveToUser(item);
    }
    const std::string bus = (folder_ / "run/bus").string();
    environment = {{"HOME", home.string()},
                   {"USER", "nobody"},
                   {"PATH", "/usr/local/bin:/usr/bin:/bin"},
                   {"LANG", "C.UTF-8"},
                   {"XDG_RUNTIME_DIR", (folder_ / "run").string()},
                   {"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + bus}};
    start({"/bin/sh", "-c",
           "exec Xvfb -displayfd 1 -noreset -screen 0 1280x1000x24 -nolisten tcp "
           ">\"$0\"",
           (folder_ / "display").string()})
        .detach();
    start({"/usr/bin/dbus-daemon", "--session", "--nofork", "--nopidfile",
           "--address=unix:path=" + bus})
        .detach();
    if (!waitUntil([&] { return fs::exists(bus) && read(folder_ / "display").ends_with('\n'); },
                   longestStart)) {
        end();
        throw std::runtime_error("the session does not come up: " + log());
    }
    const std::string number = read(folder_ / "display");
    environment["DISPLAY"] = ":" + number.substr(0, number.size() - 1);
    start({"/usr/bin/openbox", "--sm-disable"}).detach();
}

UserSession::~UserSession() {
    end();
}

void UserSession::end() const {
    for (const int signal : {SIGTERM, SIGKILL}) {
        const auto all = [&] { return processesWith(folder_.path().string()); };
        for (const pid_t pid : all()) {
            ::kill(pid, signal);
        }
        if (waitUntil([&] { return all().empty(); }, std::chrono::seconds(10))) {
            break;
        }
    }
}

Process::Options UserSession::optionsFor(const std::vector<std::string>& command,
                                         const Environment& more) const {
    Process::Options options;
    options.executable = command.front();
    options.arguments.assign(command.begin() + 1, command.end());
    if (::getuid() == 0) {
        options.arguments.assign({"--reuid=" + std::to_string(nobody),
                                  "--regid=" + std::to_string(nobody), "--clear-groups", "--"});
        options.arguments.insert(options.arguments.end(), command.begin(), command.end());
        options.executable = "/usr/bin/setpriv";
    }
    options.environment = environment;
    for (const auto& [name, value] : more) {
        (*options.environment)[name] = value;
    }
    options.directory = folder_.path();
    return options;
}

Process UserSession::start(const std::vector<std::string>& command, const Environment& more) const {
    Process::Options options = optionsFor(command, more);
    const FileHandle log(
        ::open((folder_ / "log").c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666));
    options.standardOutput = Process::ToFile{log.descriptor()};
    options.standardError = Process::ToFile{log.descriptor()};
    return Process::run(options);
}

int UserSession::run(const std::vector<std::string>& command, const Environment& more) const {
    Process process = start(command, more);
    if (const auto status = process.waitUntilExit(longestRun)) {
        return *status;
    }
    std::string running;
    for (const pid_t pid : processesWith(folder_.path().string())) {
        std::string line = read("/proc/" + std::to_string(pid) + "/cmdline");
        std::replace(line.begin(), line.end(), '\0', ' ');
        running += std::to_string(pid) + " " + line + "\n";
    }
    throw std::runtime_error(command.front() + " hangs. These run:\n" + running + log());
}

std::string UserSession::outputOf(const std::vector<std::string>& command) const {
    return Process::capture(optionsFor(command, {}), std::size_t{1} << 20U);
}

void UserSession::giveToUser(const fs::path& item) const {
    if (::getuid() == 0 && ::lchown(item.c_str(), nobody, nobody) != 0) {
        throw std::runtime_error("can't give away " + item.string());
    }
}

void UserSession::write(const fs::path& file, std::string_view text) const {
    testing::write(file, text);
    for (fs::path item = file; item != folder_.path(); item = item.parent_path()) {
        giveToUser(item);
    }
}

void UserSession::writeProgram(const fs::path& file, std::string_view script) const {
    write(file, "#!/bin/sh\n" + std::string(script) + "\n");
    fs::permissions(file, fs::perms{0755});
}

std::vector<pid_t> UserSession::processesWith(const std::string& entry) const {
    std::vector<pid_t> found;
    for (const pid_t pid : processesWhose([](const std::string&) { return true; })) {
        if (isOf(folder_.path().string(), pid) && isOf(entry, pid)) {
            found.push_back(pid);
        }
    }
    return found;
}

} // namespace quorvel::testing
