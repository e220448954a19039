#include "LaunchKit/WindowNaming.h"

#include "LaunchKit/AppBundle.h"
#include "LaunchKit/HelperProgram.h"
#include "LaunchKit/InstanceConfig.h"

#include <string_view>

namespace quorvel {
namespace {

bool has(const Environment& environment, const char* name, std::string_view value) {
    const auto found = environment.find(name);
    return found != environment.end() && found->second.find(value) != std::string::npos;
}

bool isSet(const Environment& environment, const char* name) {
    const auto found = environment.find(name);
    return found != environment.end() && !found->second.empty();
}

// Under Wayland, connecting to the X server could start it for nothing.
bool hasX11Windows(const ResolvedProgram& program, const Environment& environment) {
    return isSet(environment, "DISPLAY") &&
           (!isSet(environment, "WAYLAND_DISPLAY") ||
            program.engine == ResolvedProgram::Engine::java ||
            has(environment, "GDK_BACKEND", "x11") || has(environment, "QT_QPA_PLATFORM", "xcb"));
}

bool namesItsWindows(const ResolvedProgram& program) {
    switch (program.engine) {
    case ResolvedProgram::Engine::chromium:
    case ResolvedProgram::Engine::electron:
    case ResolvedProgram::Engine::firefox:
        return true;
    default:
        return false; // even GTK, whose property for KDE comes from the application's id
    }
}

} // namespace

std::optional<Process> startWindowNaming(const InstanceConfig& config, const std::string& word) {
    const auto app = config.kind == ShortcutKind::app
                         ? AppBundle::read(config.targetAppURL(), noEntitlements)
                         : std::nullopt;
    if (!app || !app->desktop || namesItsWindows(app->desktop->program)) {
        return std::nullopt;
    }
    Environment environment = currentEnvironment();
    for (const auto& [name, value] : config.resolvedEnvironment()) {
        environment.insert_or_assign(name, value);
    }
    const auto program = helperProgram("quorvel-window-names", "QUORVEL_WINDOW_NAMES", environment);
    if (!program || !hasX11Windows(app->desktop->program, environment)) {
        return std::nullopt;
    }
    try {
        return Process::run({.executable = *program,
                             .arguments = {word},
                             .standardOutput = Process::Discard{},
                             .standardError = Process::Discard{}});
    } catch (const PlatformError&) {
        return std::nullopt; // the windows keep their names
    }
}

} // namespace quorvel
