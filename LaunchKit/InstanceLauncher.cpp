#include "LaunchKit/InstanceLauncher.h"

#include "Base/PathText.h"
#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/Launching/LinkDoorSetup.h"
#include "LaunchKit/Launching/WindowIdentity.h"
#include "LaunchKit/Targets/NoSessionBus.h"
#include "Platform/files/ContainedFolder.h"
#include "Platform/files/FileHandle.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/PlatformError.h"
#include "Platform/homes/IsolatedEnvironment.h"
#include "Platform/homes/UserPaths.h"

namespace quorvel {
namespace {

bool hasText(const std::optional<std::string>& text) {
    return text && !text->empty();
}

// Without a log, the child inherits our streams.
void sendOutputTo(const std::optional<FileHandle>& log, Process::Options& options) {
    if (log) {
        options.standardOutput = Process::ToFile{log->descriptor()};
        options.standardError = Process::ToFile{log->descriptor()};
    }
}

void overwrite(Environment& environment, const std::map<std::string, std::string>& entries) {
    for (const auto& [key, value] : entries) {
        environment.insert_or_assign(key, value);
    }
}

// Firefox fails with a message if its profile's folder doesn't exist.
void ensureProfileFolders(const std::string& home, const std::vector<std::string>& arguments) {
    for (std::size_t index = 1; index < arguments.size(); ++index) {
        if (arguments[index - 1] == "-profile" || arguments[index - 1] == "--profile") {
            ensureFolderBelow(home, arguments[index]);
        }
    }
}

// Flatpak itself needs the bus that an application in its sandbox is to do without.
bool hidesBusInSandbox(const AppBundle& app, const CloneOptions& options) {
    return app.desktop && app.desktop->program.packaging == ResolvedProgram::Packaging::flatpak &&
           takeBusAway(options.environment);
}

void setProgram(const AppBundle& app, const CloneOptions& options,
                const std::vector<std::string>& extraArgs,
                const std::vector<std::string>& documents, Process::Options& process) {
    if (!app.desktop) {
        process.executable = app.executableURL();
        process.arguments = extraArgs;
        process.arguments.insert(process.arguments.end(), documents.begin(), documents.end());
        return;
    }
    process.executable = app.desktop->program.launcher;
    process.arguments =
        app.desktop->arguments(extraArgs, documents, hidesBusInSandbox(app, options));
    if (!app.desktop->entry.path.empty()) {
        process.directory = app.desktop->entry.path;
    }
}

IsolationOptions isolationOf(const AppBundle& app, const CloneOptions& options) {
    IsolationOptions isolation{.sharesUserFolders = options.shareUserFolders};
    if (app.desktop) {
        const ResolvedProgram& program = app.desktop->program;
        isolation.usesJava = program.engine == ResolvedProgram::Engine::java;
        isolation.usesFlatpak = program.packaging == ResolvedProgram::Packaging::flatpak;
    }
    return isolation;
}

AppBundle readApp(const std::filesystem::path& url) {
    if (auto app = AppBundle::read(url, noEntitlements)) {
        return std::move(*app);
    }
    throw InstanceLauncher::LaunchError::badBundle(url);
}

Environment environmentFor(const AppBundle& app, const std::string& home,
                           const CloneOptions& options) {
    Environment environment = currentEnvironment();
    if (app.desktop) {
        app.desktop->line.applyTo(environment);
    }
    const Environment isolated = isolatedEnvironment(home, environment, isolationOf(app, options));
    environment["HOME"] = home;
    environment["CFFIXED_USER_HOME"] = home;
    overwrite(environment, isolated);
    std::map<std::string, std::string> configured = options.environment;
    if (hidesBusInSandbox(app, options)) {
        configured.erase(sessionBusVariable);
    }
    overwrite(environment, configured);
    return environment;
}

Process launchFile(const InstanceConfig& config) {
    if (!hasText(config.openPath)) {
        throw InstanceLauncher::LaunchError::unsupported("file shortcut has no target path");
    }
    Process::Options options;
    options.executable = "/usr/bin/open";
    options.arguments = {UserPaths::expandTilde(*config.openPath)};
    return Process::run(options);
}

Process launchCommand(const InstanceConfig& config) {
    if (!hasText(config.commandPath)) {
        throw InstanceLauncher::LaunchError::unsupported("command shortcut has no executable");
    }
    const std::string home = config.resolvedHome();
    try {
        createDirectories(home);
    } catch (const PlatformError&) {
        // A command needs its home only for the log.
    }
    Process::Options options;
    options.executable = UserPaths::expandTilde(*config.commandPath);
    options.arguments = config.resolvedCommandArgs();
    if (hasText(config.workingDirectory)) {
        options.directory = UserPaths::expandTilde(*config.workingDirectory);
    }
    options.environment = currentEnvironment();
    overwrite(*options.environment, config.resolvedEnvironment());
    const std::optional<FileHandle> log = InstanceLauncher::instanceLogHandle(home);
    sendOutputTo(log, options);
    return Process::run(options);
}

} // namespace

InstanceLauncher::LaunchError
InstanceLauncher::LaunchError::badBundle(const std::filesystem::path& url) {
    return {Case::badBundle, unreadableAppText(url, "Not a readable .app bundle: "), url.string()};
}

InstanceLauncher::LaunchError
InstanceLauncher::LaunchError::unsupported(const std::string& message) {
    return {Case::unsupported, "App not clonable: " + message, message};
}

Process InstanceLauncher::launch(const InstanceConfig& config,
                                 const std::vector<std::string>& documents,
                                 const StartDetails& details) const {
    switch (config.kind) {
    case ShortcutKind::app:
        return launch(targetOf(config), config, documents, details);
    case ShortcutKind::web:
        throw LaunchError::unsupported("web shortcuts run in the runner's web host");
    case ShortcutKind::file:
        return launchFile(config);
    case ShortcutKind::command:
        break;
    }
    return launchCommand(config);
}

AppBundle InstanceLauncher::targetOf(const InstanceConfig& config) {
    if (config.shareUserFolders) {
        ensureSharedUserFolders(config.resolvedHome());
    }
    return readApp(config.targetAppURL());
}

Process InstanceLauncher::launch(const AppBundle& target, const InstanceConfig& config,
                                 const std::vector<std::string>& documents,
                                 const StartDetails& details) const {
    auto options = static_cast<const CloneOptions&>(config);
    options.environment = config.resolvedEnvironment();
    return launch(target, config.resolvedHome(), options, config.resolvedArgs(), documents,
                  details);
}

Process InstanceLauncher::launch(const std::filesystem::path& appURL, const std::string& home,
                                 const CloneOptions& options,
                                 const std::vector<std::string>& extraArgs,
                                 const std::vector<std::string>& documents,
                                 const StartDetails& details) const {
    return launch(readApp(appURL), home, options, extraArgs, documents, details);
}

Process InstanceLauncher::launch(const AppBundle& app, const std::string& home,
                                 const CloneOptions& options,
                                 const std::vector<std::string>& extraArgs,
                                 const std::vector<std::string>& documents,
                                 const StartDetails& details) const {
    if (app.desktop && !details.action.empty()) {
        AppBundle chosen = app;
        chosen.desktop->chooseAction(details.action);
        StartDetails others = details;
        others.action.clear();
        return launch(chosen, home, options, extraArgs, documents, others);
    }
    createDirectories(home);
    Process::Options process;
    setProgram(app, options, extraArgs, documents, process);
    if (app.desktop && !details.windowWord.empty()) {
        applyWindowIdentity(*app.desktop, details.windowWord, process);
    }
    process.kept = details.kept;
    const std::optional<FileHandle> log = instanceLogHandle(home);
    sendOutputTo(log, process);
    if (options.strategy == Strategy::unsupported) {
        throw LaunchError::unsupported(app.bundleId);
    }
    if (const auto obstacle = app.obstacle()) {
        throw LaunchError::unsupported(app.bundleId + ": " + *obstacle);
    }
    ensureKeychainAccess(home);
    process.environment = environmentFor(app, home, options);
    setUpLinks(app, home, options, currentEnvironment(), *process.environment);
    ensureProfileFolders(home, extraArgs);
    return Process::run(process);
}

Process InstanceLauncher::launch(const AppBundle& app, const std::string& home, Strategy strategy,
                                 const std::vector<std::string>& extraArgs,
                                 const std::map<std::string, std::string>& environment) const {
    CloneOptions options;
    options.strategy = strategy;
    options.shareUserFolders = false;
    options.links = linksInside; // a trial run must not open anything for the user
    options.environment = environment;
    return launch(app, home, options, extraArgs);
}

void InstanceLauncher::ensureKeychainAccess(const std::string& home) {
    linkIfSafe(home + "/Library/Keychains", UserPaths::expandTilde("~/Library/Keychains"));
}

void InstanceLauncher::prepareHome(const InstanceConfig& config) {
    if (config.kind != ShortcutKind::app) {
        return;
    }
    const std::string home = config.resolvedHome();
    ensureKeychainAccess(home);
    if (config.shareUserFolders) {
        ensureSharedUserFolders(home);
    }
}

std::optional<FileHandle> InstanceLauncher::instanceLogHandle(const std::string& home) {
    return openForAppending(joinAsText(home, instanceLogName));
}

} // namespace quorvel
