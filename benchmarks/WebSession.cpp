#include "benchmarks/WebSession.h"

#include "WebHost/Window/DrawingChoice.h"
#include "benchmarks/Comparison.h"
#include "tests/EndToEnd/Programs.h"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace quorvel::benchmarks {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using testing::read;

constexpr auto longestWait = 60s;
constexpr std::uint32_t pageColor = 0x1e7f3c; // of the site's page
// Inside all the windows.
constexpr std::int16_t middleX = 400;
constexpr std::int16_t middleY = 450;

// Looks more often than tests do: what is measured here takes milliseconds.
bool isDoneWithin(std::chrono::seconds limit, const std::function<bool()>& isDone) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (!isDone()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(2ms);
    }
    return true;
}

void waitFor(const std::string& what, const std::function<bool()>& isDone) {
    if (!isDoneWithin(longestWait, isDone)) {
        throw std::runtime_error(what + " takes too long");
    }
}

// Colors may be converted on the way.
bool isPageColor(std::optional<std::uint32_t> color) {
    constexpr int tolerance = 8;
    for (const unsigned shift : {0U, 8U, 16U}) {
        const auto part = [&](std::uint32_t whole) {
            return static_cast<int>(whole >> shift & 0xffU);
        };
        if (!color || std::abs(part(*color) - part(pageColor)) > tolerance) {
            return false;
        }
    }
    return true;
}

} // namespace

WebSession::WebSession() : screen_(session_.environment["DISPLAY"]) {
    session_.environment["QUORVEL_WEB_HOST"] = QUORVEL_WEB_HOST;
    session_.write(session_.home / "site.py", read(QUORVEL_SITE));
    session_
        .start({"/usr/bin/python3", (session_.home / "site.py").string(),
                (session_.home / "port").string(), requests().string()})
        .detach();
    waitFor("the site", [&] { return fs::exists(session_.home / "port"); });
    (void)run({QUORVEL_CTL, "create", "--kind", "web", "--name", "Portal", "--open-with", "--url",
               address("painted")});
}

std::string WebSession::address(const std::string& page) const {
    return "http://127.0.0.1:" + read(session_.home / "port") + "/" + page;
}

std::vector<std::string> WebSession::clone() const {
    return {(session_.home / "Applications/Portal.app/Contents/MacOS/runner").string()};
}
std::vector<std::string> WebSession::bare() const {
    // It draws as the clone does.
    const bool isSoftware = !reasonAgainstOpenGL(currentEnvironment()).empty();
    return {QUORVEL_BARE_WINDOW, address("painted"), (session_.home / "bare").string(),
            isSoftware ? "software" : "default"};
}
std::vector<std::string> WebSession::chromium() const {
    return {"/usr/bin/chromium", "--app=" + address("painted"), "--no-first-run",
            "--password-store=basic", // otherwise it waits for a keyring
            "--user-data-dir=" + (session_.home / "chromium").string()};
}

std::size_t WebSession::countOf(const std::string& request) const {
    std::istringstream lines(read(requests()));
    std::size_t count = 0;
    for (std::string line; std::getline(lines, line);) {
        count += line == request ? 1U : 0U;
    }
    return count;
}

double WebSession::show(const std::vector<std::string>& command) {
    return secondsOf([&] {
        Process program = session_.start(command);
        const pid_t pid = program.identifier();
        program.detach();
        for (const ProcessIdentity& child : childrenOf(ownPid())) {
            shown_ = child.pid == pid ? child : shown_;
        }
        waitFor(command.front(), [&] { return isPageColor(screen_.colorAt(middleX, middleY)); });
    });
}

double WebSession::run(const std::vector<std::string>& command) {
    int status = 0;
    const double seconds = secondsOf([&] { status = session_.run(command); });
    if (status != 0) {
        throw std::runtime_error(command.front() + " ends with " + std::to_string(status) + ": " +
                                 session_.log());
    }
    return seconds;
}

std::vector<ProcessIdentity> WebSession::processes() const {
    std::vector<ProcessIdentity> found = descendantsOf(shown_.pid);
    if (isRunning(shown_)) {
        found.push_back(shown_);
    }
    return found;
}

// Chromium does not always end, for instance where it waits for a service of the desktop.
double WebSession::end(int signal) {
    constexpr auto longestEnd = 10s;
    std::vector<ProcessIdentity> family = processes();
    const auto isGone = [&] {
        std::erase_if(family, [](const ProcessIdentity& process) { return !isRunning(process); });
        return family.empty();
    };
    const double seconds = secondsOf([&] {
        ::kill(shown_.pid, signal);
        if (isDoneWithin(longestEnd, isGone)) {
            return;
        }
        const auto late = processes();
        family.insert(family.end(), late.begin(), late.end());
        for (const ProcessIdentity& process : family) {
            ::kill(process.pid, SIGKILL);
        }
        waitFor("the end of " + std::to_string(shown_.pid), isGone);
    });
    waitFor("an empty screen", [&] { return !isPageColor(screen_.colorAt(middleX, middleY)); });
    return seconds;
}

double WebSession::crash() {
    const std::size_t before = countOf("/painted");
    return secondsOf([&] {
        for (const ProcessIdentity& process : processes()) {
            const std::string words = read("/proc/" + std::to_string(process.pid) + "/cmdline");
            if (words.find("/WebKitWebProcess") < words.find('\0')) {
                ::kill(process.pid, SIGKILL);
            }
        }
        waitFor("the page after a crash", [&] {
            return countOf("/painted") > before && isPageColor(screen_.colorAt(middleX, middleY));
        });
    });
}

void WebSession::flood() {
    std::vector<std::string> command = clone();
    command.push_back(address("flood"));
    (void)run(command);
    waitFor("the page that floods", [&] { return countOf("/flood") > 0; });
    const std::string x = std::to_string(middleX);
    const std::string y = std::to_string(middleY);
    // A click may come too early; one too many would open one more window.
    waitFor("the flood", [&] {
        (void)run({"/usr/bin/xdotool", "mousemove", x, y, "click", "1"});
        return isDoneWithin(
            2s, [&] { return read(requests()).find("/flooded?") != std::string::npos; });
    });
}

double WebSession::memory() const {
    constexpr double kibibytesPerMebibyte = 1024;
    double kibibytes = 0;
    for (const ProcessIdentity& process : processes()) {
        std::istringstream words(read("/proc/" + std::to_string(process.pid) + "/smaps_rollup"));
        for (std::string word; words >> word;) {
            if (word == "Pss:") {
                double share = 0;
                words >> share;
                kibibytes += share;
            }
        }
    }
    return kibibytes / kibibytesPerMebibyte;
}

} // namespace quorvel::benchmarks
