#include "tests/support/XServer.h"

#include "tests/support/Waiting.h"

#include <fcntl.h>
#include <stdexcept>
#include <unistd.h>

namespace quorvel::testing {
namespace fs = std::filesystem;
namespace {

constexpr auto serverProgram = "/usr/bin/Xvfb";
constexpr auto longestStart = std::chrono::seconds(60); // of a machine that is busy

Process quietly(const std::string& program, std::vector<std::string> arguments,
                Process::Output output = Process::Discard{}) {
    Process::Options options;
    options.executable = program;
    options.arguments = std::move(arguments);
    options.standardOutput = output;
    options.standardError = Process::Discard{};
    return Process::run(options);
}

std::string programOf(const std::string& windowManager) {
    return "/usr/bin/" + windowManager;
}

std::vector<std::string> withoutSession(const std::string& windowManager) {
    return {windowManager == "xfwm4" ? "--sm-client-disable" : "--sm-disable"};
}

// A window that was there before it would never get the keyboard.
bool windowManagerRuns() {
    Process::Options options;
    options.executable = "/usr/bin/xdotool";
    options.arguments = {"get_num_desktops"};
    const std::string count = Process::capture(options, 64);
    return !count.empty() && count != "0\n";
}

bool isAnyWindowManaged() {
    Process::Options options;
    options.executable = "/usr/bin/xprop";
    options.arguments = {"-root", "_NET_CLIENT_LIST"};
    return Process::capture(options, 4096).find("0x") != std::string::npos;
}

// Openbox misses a window that appears at a certain moment of its start.
bool managesNewWindows(const fs::path& note) {
    const BackgroundProgram window(QUORVEL_X11_WINDOW, {note.string(), "Trial"});
    return waitUntil(isAnyWindowManaged, std::chrono::seconds(1));
}

} // namespace

BackgroundProgram::BackgroundProgram(const std::string& program, std::vector<std::string> arguments)
    : process_(quietly(program, std::move(arguments))) {}

BackgroundProgram::~BackgroundProgram() {
    process_.terminate();
    process_.waitUntilExit();
}

std::vector<std::string> XServer::missingPrograms(const std::string& windowManager) {
    std::vector<std::string> missing;
    for (const std::string& program :
         {std::string(serverProgram), programOf(windowManager), std::string("/usr/bin/xdotool"),
          std::string("/usr/bin/xprop")}) {
        if (!fs::exists(program)) {
            missing.push_back(program);
        }
    }
    return missing;
}

XServer::XServer(const std::string& windowManager) {
    // The server chooses a free number and writes it down.
    const fs::path numberFile = folder_ / "display";
    const int file = ::open(numberFile.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    // A server that resets when its last client leaves would drop a client that connects then.
    server_.emplace(
        quietly(serverProgram,
                {"-displayfd", "1", "-noreset", "-screen", "0", "1280x1000x24", "-nolisten", "tcp"},
                Process::ToFile{file}));
    ::close(file);
    if (!waitUntil([&] { return read(numberFile).ends_with('\n'); }, longestStart)) {
        throw std::runtime_error("the X server does not come up");
    }
    const std::string number = read(numberFile);
    display_.emplace("DISPLAY", ":" + number.substr(0, number.size() - 1));
    windowManager_.emplace(programOf(windowManager), withoutSession(windowManager));
    if (!waitUntil(windowManagerRuns, longestStart) ||
        !waitUntil([&] { return managesNewWindows(folder_ / "trial"); }, longestStart) ||
        !waitUntil([] { return !isAnyWindowManaged(); }, longestStart)) {
        throw std::runtime_error("the window manager does not come up");
    }
}

} // namespace quorvel::testing
