#include "LaunchKit/Launching/StatusItemStart.h"

#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/Launching/HelperProgram.h"
#include "LaunchKit/Wrappers/WrapperLayout.h"
#include "Platform/files/FileSystem.h"
#include "Platform/processes/LoadedModule.h"

namespace quorvel {
namespace {

// Returns the clone's own copy where the system demands one, otherwise the installed program.
std::optional<std::filesystem::path> programFor(const std::string& identity,
                                                const Environment& session) {
    constexpr const char* variable = "QUORVEL_STATUS_ITEM";
    if (!modulesBelongToBundles() || session.contains(variable)) {
        return helperProgram(std::string(statusItemProgram), variable, session);
    }
    const std::filesystem::path own = statusItemOf(identity);
    return isExecutableFile(own) ? std::optional(own) : std::nullopt;
}

} // namespace

bool needsStatusItem(const InstanceConfig& config) {
    return config.menuBarIcon &&
           (config.kind == ShortcutKind::app || config.kind == ShortcutKind::command);
}

std::optional<Process> startStatusItem(const InstanceConfig& config, const std::string& identity) {
    if (!needsStatusItem(config)) {
        return std::nullopt;
    }
    const auto program = programFor(identity, currentEnvironment());
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
