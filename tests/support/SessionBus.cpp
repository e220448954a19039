#include "tests/support/SessionBus.h"

#include "tests/support/Waiting.h"

#include <stdexcept>

namespace quorvel::testing {
namespace fs = std::filesystem;
namespace {

constexpr auto daemonProgram = "/usr/bin/dbus-daemon";

constexpr auto chosenService = "/usr/share/dbus-1/services/org.xfce.Xfconf.service";

// As the system's own, but for the folder of services.
std::string configuration(const fs::path& services) {
    return R"(<!DOCTYPE busconfig PUBLIC
 "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:tmpdir=/tmp</listen>
  <servicedir>)" +
           services.string() + R"(</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";
}

} // namespace

bool SessionBus::isAvailable() {
    return fs::exists(daemonProgram);
}

SessionBus& SessionBus::shared() {
    static SessionBus bus(Services::Chosen);
    return bus;
}

SessionBus::SessionBus(Services services) {
    const std::string address = "unix:path=" + (folder_ / "bus").string();
    Process::Options options;
    options.executable = daemonProgram;
    write(folder_ / "configuration", configuration(folder_ / "services"));
    fs::create_directory(folder_ / "services");
    if (fs::exists(chosenService)) {
        fs::copy(chosenService, folder_ / "services");
    }
    options.arguments = {services == Services::Chosen
                             ? "--config-file=" + (folder_ / "configuration").string()
                             : "--session",
                         "--nofork", "--nopidfile", "--nosyslog", "--address=" + address};
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
