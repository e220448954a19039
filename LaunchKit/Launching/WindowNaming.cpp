#include "LaunchKit/Launching/WindowNaming.h"

#include "LaunchKit/AppBundle.h"
#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/Launching/HelperProgram.h"
#include "Platform/processes/Environment.h"
#include "Platform/processes/Process.h"

#include <string_view>

namespace quorvel {
namespace {

// The values are lists, of which the first that works is taken.
bool prefers(const Environment& environment, const char* name, std::string_view value) {
    return valueOf(environment, name).starts_with(value);
}

// Under Wayland, connecting to the X server could start it for nothing.
bool hasX11Windows(const ResolvedProgram& program, const Environment& environment) {
    return valueOf(environment, "WAYLAND_DISPLAY").empty() ||
           program.engine == ResolvedProgram::Engine::java ||
           program.toolkit == ResolvedProgram::Toolkit::gtk2 ||
           prefers(environment, "GDK_BACKEND", "x11") ||
           prefers(environment, "QT_QPA_PLATFORM", "xcb");
}

} // namespace

std::optional<Process> startWindowNaming(const AppBundle& target, const InstanceConfig& config,
                                         const std::string& word) {
    // Even with GTK's option it is needed: GTK's property for KDE comes from the application's id.
    if (!target.desktop || isBrowserEngine(target.desktop->program.engine)) {
        return std::nullopt;
    }
    Environment environment = currentEnvironment();
    for (const auto& [name, value] : config.resolvedEnvironment()) {
        environment.insert_or_assign(name, value);
    }
    const auto program = helperProgram("quorvel-window-names", "QUORVEL_WINDOW_NAMES", environment);
    if (!program || valueOf(environment, "DISPLAY").empty() ||
        !hasX11Windows(target.desktop->program, environment)) {
        return std::nullopt;
    }
    // The display is the clone's, the home the runner's: so it does not count as part of the clone.
    const Environment own = currentEnvironment();
    if (const auto home = own.find("HOME"); home != own.end()) {
        environment.insert_or_assign("HOME", home->second);
    }
    try {
        return Process::run({.executable = *program,
                             .arguments = {word, std::to_string(ownPid())},
                             .environment = environment,
                             .standardOutput = Process::Discard{},
                             .standardError = Process::Discard{}});
    } catch (const PlatformError&) {
        return std::nullopt; // the windows keep their names
    }
}

} // namespace quorvel
