#include "tests/support/SessionBus.h"

#include "tests/support/Waiting.h"

#include <stdexcept>

namespace quorvel::testing {
namespace fs = std::filesystem;
namespace {

constexpr auto daemonProgram = "/usr/bin/dbus-daemon";

} // namespace

bool SessionBus::isAvailable() {
    return fs::exists(daemonProgram);
}

SessionBus& SessionBus::shared() {
    static SessionBus bus;
    return bus;
}

SessionBus::SessionBus() {
    const std::string address = "unix:path=" + (folder_ / "bus").string();
    Process::Options options;
    options.executable = daemonProgram;
    options.arguments = {"--session", "--nofork", "--nopidfile", "--nosyslog",
                         "--address=" + address};
    options.standardOutput = Process::Discard{};
    options.standardError = Process::Discard{};
    daemon_.emplace(Process::run(options));
    if (!waitUntil([&] { return fs::exists(folder_ / "bus"); })) {
        throw std::runtime_error("the session bus did not start");
    }
    address_.emplace("DBUS_SESSION_BUS_ADDRESS", address);
}

SessionBus::~SessionBus() {
    daemon_->terminate();
    daemon_->waitUntilExit();
}

} // namespace quorvel::testing
