#include "LaunchKit/Launching/WindowIdentity.h"

#include "LaunchKit/AppBundle.h"
#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/Targets/NoSessionBus.h"
#include "Platform/files/FileSystem.h"

#include <algorithm>
#include <string_view>

namespace quorvel {
namespace {

using Engine = ResolvedProgram::Engine;
using Packaging = ResolvedProgram::Packaging;
using Toolkit = ResolvedProgram::Toolkit;

// Scripts that are programs themselves and take GTK's option; others might refuse it.
bool takesGtkName(const ResolvedProgram& program) {
    return program.launcher.filename() == "meld" && program.interpreter.starts_with("python");
}

// A script doesn't pass its own name on, and a program of several names may behave as each says.
bool takesProgramName(const ResolvedProgram& program) {
    return program.packaging == Packaging::none && program.engine == Engine::other &&
           program.interpreter.empty() &&
           program.launcher.filename() == program.executable.filename() &&
           isSameItem(program.launcher, program.executable);
}

// Whether windows on Wayland are grouped by the program's name, too.
bool followsProgramName(Toolkit toolkit, const Environment& environment) {
    // With a bus, GTK 4 takes its identity from the application's id.
    return toolkit == Toolkit::gtk3 || toolkit == Toolkit::wx ||
           (toolkit == Toolkit::gtk4 && takeBusAway(environment));
}

bool names(const std::vector<std::string>& arguments, std::string_view option) {
    return std::any_of(arguments.begin(), arguments.end(), [&](const std::string& argument) {
        return argument == option || argument.starts_with(std::string(option) + "=");
    });
}

bool namesOneAlready(const WindowIdentity& identity, const std::vector<std::string>& arguments) {
    return std::any_of(identity.arguments.begin(), identity.arguments.end(),
                       [&](const std::string& argument) {
                           const std::string option = argument.substr(0, argument.find('='));
                           return option.starts_with('-') && names(arguments, option);
                       });
}

} // namespace

WindowIdentity windowIdentity(const ResolvedProgram& program, const std::string& word) {
    switch (program.engine) {
    case Engine::firefox:
        return {{}, {"--name", word, "--class", word}}; // one for Wayland, one for X11
    case Engine::chromium:
    case Engine::electron:
        return {{}, {"--class=" + word}};
    case Engine::eclipse:
    case Engine::java:
    case Engine::libreOffice:
        return {};
    case Engine::other:
        break;
    }
    if (takesGtkName(program)) {
        return {{}, {"--name=" + word}};
    }
    return takesProgramName(program) ? WindowIdentity{word, {}} : WindowIdentity{};
}

void applyWindowIdentity(const DesktopTarget& target, const std::string& word,
                         Process::Options& start) {
    const WindowIdentity identity = windowIdentity(target.program, word);
    if (namesOneAlready(identity, start.arguments)) {
        return;
    }
    start.programName = identity.programName;
    const auto place =
        static_cast<std::ptrdiff_t>(target.line.engineArgumentsIndex(start.arguments));
    start.arguments.insert(start.arguments.begin() + place, identity.arguments.begin(),
                           identity.arguments.end());
}

WindowGrouping windowGrouping(const ResolvedProgram& program, const Environment& environment) {
    const WindowIdentity identity = windowIdentity(program, "X");
    if (!identity.arguments.empty() && !takesGtkName(program)) {
        return WindowGrouping::own;
    }
    if (program.packaging == Packaging::flatpak) {
        return WindowGrouping::shared;
    }
    // X11 windows get the word from outside, whatever the program understands.
    const bool onlyOnX11 = program.toolkit == Toolkit::gtk2;
    const bool takesWord = identity.programName && followsProgramName(program.toolkit, environment);
    return onlyOnX11 || takesWord ? WindowGrouping::own : WindowGrouping::ownOnX11;
}

WindowGrouping windowGroupingOf(const InstanceConfig& config) {
    const auto app = config.kind == ShortcutKind::app
                         ? AppBundle::read(config.targetAppURL(), noEntitlements)
                         : std::nullopt;
    return app && app->desktop ? windowGrouping(app->desktop->program, config.environment)
                               : WindowGrouping::own;
}

} // namespace quorvel
