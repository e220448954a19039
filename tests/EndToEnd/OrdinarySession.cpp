#include "tests/EndToEnd/OrdinarySession.h"

#include "tests/support/Waiting.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvel::testing {
namespace fs = std::filesystem;
namespace {

constexpr auto longestStart = std::chrono::seconds(60); // on a machine that is busy
constexpr auto userName = "tester";
constexpr auto nobodysHome = "/nonexistent";
// Any value will do: it protects nothing.
constexpr auto cookie = "0123456789abcdef0123456789abcdef";

// The new mounts: an account with a home for programs that ask the user database, and temporary
// folders in which nobody else's files are. $1 is the session's folder, which stays where it is.
constexpr auto mounts = R"(
mount --bind "$1/passwd" /etc/passwd &&
mount --bind "$1" "$1/tmp/${1##*/}" && mount --rbind "$1/tmp" /tmp &&
mount -t tmpfs -o mode=1777 none /dev/shm && mount -t tmpfs -o mode=1777 none /var/tmp &&
: > "$1/ready" && exec sleep infinity)";

// A line that begins with "/proc/NUMBER" for each fact. A process that belongs to somebody else has
// no executable that can be seen.
constexpr auto listProcesses = R"(
find /proc/[0-9]* -maxdepth 1 -name exe -lname '/*' -printf '%p %l\n' 2>/dev/null
grep -as '^PPid:' /proc/[0-9]*/status
grep -zas '^HOME=' /proc/[0-9]*/environ | tr '\000' '\n')";

// One line per property, after a line for each window.
constexpr auto listWindows = R"(
for window in $(xprop -root _NET_CLIENT_LIST | grep -o '0x[0-9a-f]*'); do
  echo window
  xprop -id "$window" _NET_WM_PID WM_CLASS _KDE_NET_WM_DESKTOP_FILE _NET_WM_WINDOW_TYPE WM_TRANSIENT_FOR _NET_WM_NAME WM_NAME 2>/dev/null
  echo # a window that closes meanwhile may leave half a line
done)";

constexpr std::array programs{"/usr/bin/Xvfb",        "/usr/bin/openbox", "/usr/bin/xprop",
                              "/usr/bin/dbus-daemon", "/usr/bin/xauth",   "/usr/bin/setpriv"};

// A number that no process has; two tests at the same time choose different ones.
std::string unusedUser() {
    return std::to_string(20000 + ::getpid() % 40000);
}

void giveTo(const fs::path& folder, const std::string& user, mode_t mode) {
    fs::create_directories(folder);
    const auto number = static_cast<uid_t>(std::stoul(user));
    if (::chmod(folder.c_str(), mode) != 0 || ::chown(folder.c_str(), number, number) != 0) {
        throw std::runtime_error("can't make " + folder.string());
    }
}

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

std::optional<std::string> after(std::string_view mark, const std::string& line) {
    const std::size_t at = line.find(mark);
    return at == std::string::npos ? std::nullopt : std::optional(line.substr(at + mark.size()));
}

// The texts between double quotes.
std::vector<std::string> quoted(const std::string& line) {
    std::vector<std::string> texts;
    std::size_t begin = 0;
    while ((begin = line.find('"', begin)) != std::string::npos) {
        const std::size_t end = std::min(line.find('"', begin + 1), line.size());
        texts.push_back(line.substr(begin + 1, end - begin - 1));
        begin = end + 1;
    }
    return texts;
}

void readProperty(SessionWindow& window, const std::string& line) {
    const std::vector<std::string> texts = quoted(line);
    if (line.starts_with("_NET_WM_PID") && line.find(" = ") != std::string::npos) {
        window.process = std::stoi(line.substr(line.find(" = ") + 3));
    } else if (line.starts_with("WM_CLASS") && texts.size() == 2) {
        window.instance = texts[0];
        window.className = texts[1];
    } else if (line.starts_with("_KDE_NET_WM_DESKTOP_FILE") && !texts.empty()) {
        window.desktopFile = texts[0];
    } else if ((line.starts_with("WM_NAME") || line.starts_with("_NET_WM_NAME")) &&
               !texts.empty()) {
        window.title = texts[0];
    } else if (line.starts_with("_NET_WM_WINDOW_TYPE")) {
        window.isDialog = line.find("_TYPE_DIALOG") != std::string::npos;
        window.isSecondary |= line.find("_TYPE_SPLASH") != std::string::npos;
    } else if (line.starts_with("WM_TRANSIENT_FOR") && line.find("# 0x") != std::string::npos &&
               !line.ends_with("# 0x0")) {
        window.isSecondary = true;
    }
}

std::string stateOf(const fs::path& file) {
    struct stat status {};
    if (::lstat(file.c_str(), &status) != 0 || S_ISDIR(status.st_mode)) {
        return "folder";
    }
    return std::to_string(status.st_size) + " " + std::to_string(status.st_mtim.tv_sec) + "." +
           std::to_string(status.st_mtim.tv_nsec);
}

} // namespace

std::optional<std::string> OrdinarySession::obstacle() {
    if (::geteuid() != 0) {
        return "only root can become another user";
    }
    for (const char* program : programs) {
        if (!fs::exists(program)) {
            return std::string(program) + " is missing";
        }
    }
    return std::nullopt;
}

OrdinarySession::OrdinarySession(DataFolders dataFolders) : user_(unusedUser()) {
    fs::permissions(folder_.path(), fs::perms(0755));
    giveTo(folder_ / "user", user_, 0755);
    giveTo(home(), user_, 0700);
    for (const char* folder : {"Desktop", "Documents", "Downloads"}) {
        giveTo(home() / folder, user_, 0755);
    }
    giveTo(folder_ / "run", user_, 0700);
    environment_ = {{"HOME", home()},
                    {"USER", userName},
                    {"LOGNAME", userName},
                    {"LANG", "C.UTF-8"},
                    {"PATH", "/usr/local/bin:/usr/bin:/bin:/usr/local/games:/usr/games"},
                    {"XDG_RUNTIME_DIR", folder_ / "run"},
                    {"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + (folder_ / "run/bus").string()},
                    // Where the kernel permits no network namespace, nothing is reached either.
                    {"http_proxy", "http://127.0.0.1:9"},
                    {"https_proxy", "http://127.0.0.1:9"}};
    fs::path authority = home() / ".Xauthority";
    if (dataFolders == DataFolders::Elsewhere) {
        for (const char* kind : {"CONFIG", "DATA", "STATE", "CACHE"}) {
            environment_[std::string("XDG_") + kind + "_HOME"] =
                folder_ / (std::string("user/xdg-") + kind);
        }
        authority = folder_ / "run/authority";
        environment_["XAUTHORITY"] = authority;
    }
    makeNamespaces();
    try {
        startServer(authority);
        startBus();
        startWindowManager();
    } catch (...) {
        end();
        throw;
    }
}

OrdinarySession::~OrdinarySession() {
    end();
}

void OrdinarySession::end() {
    for (const char* signal : {"TERM", "KILL"}) {
        std::vector<std::string> command{"/bin/kill", "-s", signal};
        for (const auto& [number, process] : processes()) {
            if (!process.executable.empty()) {
                command.push_back(std::to_string(number));
            }
        }
        static_cast<void>(run(command));
        if (waitUntil([&] { return !hasProcesses(); }, std::chrono::seconds(10))) {
            break;
        }
    }
    if (namespaces_) {
        namespaces_->sendSignal(SIGKILL);
        namespaces_->waitUntilExit();
    }
    for (const std::string& file :
         firstProcess_.empty() ? sharedFiles() : std::set<std::string>{}) {
        std::error_code ignored;
        fs::remove_all(file, ignored);
    }
}

fs::path OrdinarySession::dataHome() const {
    const auto variable = environment_.find("XDG_DATA_HOME");
    return variable == environment_.end() ? home() / ".local/share" : fs::path(variable->second);
}

void OrdinarySession::set(const std::string& variable, const std::string& value) {
    environment_[variable] = value;
}

bool OrdinarySession::hasProcesses() const {
    const auto all = processes();
    return std::any_of(all.begin(), all.end(),
                       [](const auto& one) { return !one.second.executable.empty(); });
}

void OrdinarySession::makeNamespaces() {
    fs::create_directories(folder_ / "tmp" / folder_.path().filename());
    fs::permissions(folder_ / "tmp", fs::perms(01777));
    write(folder_ / "passwd", read("/etc/passwd") + userName + ":x:" + user_ + ":" + user_ +
                                  "::" + home().string() + ":/bin/sh\n");
    Process::Options options;
    options.executable = "/usr/bin/setpriv";
    // If this process is killed, so is everything in the session.
    options.arguments = {"--pdeathsig",
                         "KILL",
                         "/usr/bin/unshare",
                         "--mount",
                         "--net",
                         "--pid",
                         "--fork",
                         "--kill-child=KILL",
                         "--mount-proc",
                         "--propagation",
                         "private",
                         "/bin/sh",
                         "-c",
                         mounts,
                         "sh",
                         folder_.path().string()};
    options.standardOutput = Process::Discard{};
    options.standardError = Process::Discard{};
    Process process = Process::run(options);
    const bool ready = waitUntil(
        [&] { return fs::exists(folder_ / "ready") || !process.isRunning(); }, longestStart);
    if (!ready || !process.isRunning()) {
        return; // A container may forbid it; the user has no account then.
    }
    const std::string number = std::to_string(process.identifier());
    std::istringstream children(read("/proc/" + number + "/task/" + number + "/children"));
    children >> firstProcess_;
    namespaces_.emplace(std::move(process));
}

std::vector<std::string> OrdinarySession::inside(std::vector<std::string> command) const {
    std::vector<std::string> prefix;
    if (!firstProcess_.empty()) {
        prefix = {"/usr/bin/nsenter", "-t", firstProcess_, "--mount", "--net", "--pid"};
    }
    for (const char* word : {"/usr/bin/setpriv", "--reuid", user_.c_str(), "--regid", user_.c_str(),
                             "--clear-groups"}) {
        prefix.emplace_back(word);
    }
    prefix.insert(prefix.end(), command.begin(), command.end());
    return prefix;
}

Process OrdinarySession::launch(std::vector<std::string> command, Process::Output output) const {
    command = inside(std::move(command));
    Process::Options options;
    options.executable = command.front();
    options.arguments.assign(command.begin() + 1, command.end());
    options.environment = environment_;
    options.directory = home();
    options.standardOutput = output;
    options.standardError = Process::Discard{};
    return Process::run(options);
}

Outcome OrdinarySession::run(std::vector<std::string> command) const {
    command.insert(command.begin(), {"/usr/bin/timeout", "120"});
    return outcomeOf(inside(std::move(command)), environment_);
}

void OrdinarySession::start(std::vector<std::string> command) {
    programs_.push_back(launch(std::move(command)));
}

// Its own cookie is for display 0, which it doesn't compare; that of the programs must be right.
void OrdinarySession::addCookie(const fs::path& authority, const std::string& display) const {
    const Outcome added =
        run({"/usr/bin/xauth", "-f", authority.string(), "add", display, ".", cookie});
    if (added.status != 0) {
        throw std::runtime_error("no X cookie: " + added.output);
    }
}

void OrdinarySession::startServer(const fs::path& usersAuthority) {
    const fs::path authority = folder_ / "run/server";
    addCookie(authority, ":0");
    // The server chooses a free number and writes it down.
    const fs::path numberFile = folder_ / "display";
    const int file = ::open(numberFile.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    programs_.push_back(launch({"/usr/bin/Xvfb", "-displayfd", "1", "-noreset", "-screen", "0",
                                "1280x1000x24", "-nolisten", "tcp", "-auth", authority.string()},
                               Process::ToFile{file}));
    ::close(file);
    if (!waitUntil([&] { return read(numberFile).ends_with('\n'); }, longestStart)) {
        throw std::runtime_error("the X server does not come up");
    }
    const std::string number = read(numberFile);
    environment_["DISPLAY"] = ":" + number.substr(0, number.size() - 1);
    addCookie(usersAuthority, environment_["DISPLAY"]);
}

void OrdinarySession::startBus() {
    // Without this variable the daemon asks the user database, where the user may not be.
    start({"/usr/bin/env", "XDG_DATA_HOME=" + dataHome().string(), "/usr/bin/dbus-daemon",
           "--session", "--nofork", "--nopidfile", "--nosyslog",
           "--address=" + environment_["DBUS_SESSION_BUS_ADDRESS"]});
    if (!waitUntil([&] { return fs::exists(folder_ / "run/bus"); }, longestStart)) {
        throw std::runtime_error("the session bus does not come up");
    }
}

void OrdinarySession::startWindowManager() {
    start({"/usr/bin/openbox", "--sm-disable"});
    const auto manages = [&] {
        const Outcome root = run({"/usr/bin/xprop", "-root", "_NET_SUPPORTING_WM_CHECK"});
        return root.output.find("0x") != std::string::npos;
    };
    if (!waitUntil(manages, longestStart)) {
        throw std::runtime_error("the window manager does not come up");
    }
}

std::map<pid_t, SessionProcess> OrdinarySession::processes() const {
    Environment environment = environment_;
    environment["HOME"] = nobodysHome; // so that the question can be told from the answer
    std::map<pid_t, SessionProcess> found;
    const std::string proc = "/proc/";
    for (const std::string& line :
         linesOf(outcomeOf(inside({"/bin/sh", "-c", listProcesses}), environment).output)) {
        if (!line.starts_with(proc)) {
            continue;
        }
        SessionProcess& process = found[std::stoi(line.substr(proc.size()))];
        if (const auto parent = after("/status:PPid:", line)) {
            process.parent = std::stoi(*parent);
        } else if (const auto home = after("/environ:HOME=", line)) {
            process.home = *home;
        } else if (const auto executable = after("/exe ", line)) {
            process.executable = *executable;
        }
    }
    std::erase_if(found, [](const auto& one) { return one.second.home == nobodysHome; });
    return found;
}

std::vector<SessionWindow> OrdinarySession::windows() const {
    std::vector<SessionWindow> windows;
    for (const std::string& line : linesOf(run({"/bin/sh", "-c", listWindows}).output)) {
        if (line == "window") {
            windows.emplace_back();
        } else if (!windows.empty()) {
            readProperty(windows.back(), line);
        }
    }
    return windows;
}

FileStates OrdinarySession::userFiles() const {
    FileStates files;
    std::error_code error;
    for (fs::recursive_directory_iterator item(folder_ / "user", error), end; !error && item != end;
         item.increment(error)) {
        files[item->path().lexically_relative(folder_ / "user").string()] = stateOf(item->path());
    }
    return files;
}

std::set<std::string> OrdinarySession::sharedFiles() const {
    const Outcome found = run({"/bin/sh", "-c",
                               "find /tmp /var/tmp /dev/shm \"$XDG_RUNTIME_DIR\" -mindepth 1 "
                               "-maxdepth 1 -user \"$(id -u)\" 2>/dev/null"});
    const std::vector<std::string> lines = linesOf(found.output);
    return {lines.begin(), lines.end()};
}

} // namespace quorvel::testing
