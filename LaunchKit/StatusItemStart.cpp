#include "LaunchKit/StatusItemStart.h"

#include "LaunchKit/HelperProgram.h"
#include "LaunchKit/InstanceConfig.h"

namespace quorvel {

std::optional<Process> startStatusItem(const InstanceConfig& config, const std::string& identity) {
    if (!config.menuBarIcon) {
        return std::nullopt;
    }
    const auto program =
        helperProgram("quorvel-status-item", "QUORVEL_STATUS_ITEM", currentEnvironment());
    if (!program) {
        return std::nullopt;
    }
    // The clone's own start has used up its token; each click in the tray comes with another.
    Environment environment = currentEnvironment();
    environment.erase("XDG_ACTIVATION_TOKEN");
    environment.erase("DESKTOP_STARTUP_ID");
    try {
        return Process::run({.executable = *program,
                             .arguments = {identity, std::to_string(ownPid()),
                                           config.menuBarIconTemplate ? "symbolic" : "full"},
                             .environment = environment,
                             .standardOutput = Process::Discard{},
                             .standardError = Process::Discard{}});
    } catch (const PlatformError&) {
        return std::nullopt; // the clone works without
    }
}

} // namespace quorvel
