#include "tests/EndToEnd/Desktop.h"

#include "tests/support/Waiting.h"

#include <fcntl.h>
#include <filesystem>
#include <stdexcept>
#include <unistd.h>

namespace quorvel::testing {
namespace fs = std::filesystem;
namespace {

constexpr auto serverProgram = "/usr/bin/Xvfb";
constexpr auto longestStart = std::chrono::seconds(60); // of a machine that is busy
constexpr auto windowManagerProgram = "/usr/bin/openbox";

Process quietly(const std::string& program, std::vector<std::string> arguments,
                Process::Output output = Process::Discard{}) {
    Process::Options options;
    options.executable = program;
    options.arguments = std::move(arguments);
    options.standardOutput = output;
    options.standardError = Process::Discard{};
    return Process::run(options);
}

// A window that was there before it would never get the keyboard.
bool windowManagerRuns() {
    Process::Options options;
    options.executable = "/usr/bin/xdotool";
    options.arguments = {"get_num_desktops"};
    const std::string count = Process::capture(options, 64);
    return !count.empty() && count != "0\n";
}

} // namespace

std::vector<std::string> Desktop::missingPrograms() {
    std::vector<std::string> missing;
    for (const char* program :
         {serverProgram, windowManagerProgram, "/usr/bin/xdotool", "/usr/bin/import",
          "/usr/bin/dbus-daemon", "/usr/libexec/at-spi-bus-launcher"}) {
        if (!fs::exists(program)) {
            missing.emplace_back(program);
        }
    }
    return missing;
}

Desktop::Desktop() {
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
    setVariable("DISPLAY", ":" + number.substr(0, number.size() - 1));
    setVariable("XDG_RUNTIME_DIR", folder_.path().string());
    setVariable("QT_QPA_PLATFORM", "xcb");
    setVariable("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1");
    setVariable("NO_AT_BRIDGE", "0");
    bus_.emplace();
    windowManager_.emplace(quietly(windowManagerProgram, {"--sm-disable"}));
    if (!waitUntil(windowManagerRuns, longestStart)) {
        throw std::runtime_error("the window manager does not come up");
    }
}

Desktop::Program::~Program() {
    process_.terminate();
    process_.waitUntilExit();
}

void Desktop::setVariable(const std::string& name, const std::string& value) {
    variables_.push_back(std::make_unique<ScopedEnvironment>(name, value));
}

} // namespace quorvel::testing
