#include "LinkDoor/DefaultBrowser.h"

#include "Base/PathText.h"
#include "LinkDoor/LinkSession.h"
#include "Platform/entries/DefaultApplication.h"
#include "Platform/entries/ExecLine.h"
#include "Platform/files/FileSystem.h"
#include "Platform/homes/UserPaths.h"
#include "Platform/processes/MainExecutable.h"
#include "Platform/processes/Process.h"
#include "Platform/programs/LauncherScript.h"
#include "Platform/programs/ProgramResolution.h"

#include <algorithm>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

bool isShellName(const fs::path& name) {
    return isPosixShell(name.native()) || name == "csh" || name == "tcsh" || name == "fish";
}

// A shell would interpret the address as a part of its command line; no browser does.
bool isShell(const fs::path& program) {
    std::error_code code;
    return isShellName(program.filename()) || isShellName(fs::canonical(program, code).filename());
}

// Whether an argument is a command line that contains the address, which a shell or a terminal
// would take apart: "w3m ADDRESS".
bool isCommandLine(std::string argument, const std::string& address) {
    for (std::size_t at = argument.find(address); at != std::string::npos;
         at = argument.find(address)) {
        argument.erase(at, address.size());
    }
    return argument.find_first_of(" \t\n\"'`;&|$(") != std::string::npos;
}

// "-c", or several options with "c" as the last.
bool takesCommand(std::string_view option) {
    return option.starts_with('-') && !option.starts_with("--") && option.ends_with('c');
}

// Whether a shell would read the address, be it the program or started by it.
bool isReadByShell(const fs::path& program, const std::vector<std::string>& arguments,
                   const std::string& address) {
    bool hasShell = isShell(program);
    std::string_view before;
    for (const std::string& argument : arguments) {
        if (argument == address) {
            if (hasShell && takesCommand(before)) {
                return true;
            }
        } else if (argument.find(address) != std::string::npos) {
            if (hasShell || isCommandLine(argument, address)) {
                return true;
            }
        } else {
            hasShell = hasShell || isShellName(fs::path(argument).filename());
        }
        before = argument;
    }
    return false;
}

bool contain(const std::vector<std::string>& arguments, const std::string& address) {
    return std::any_of(arguments.begin(), arguments.end(), [&](const std::string& argument) {
        return argument.find(address) != std::string::npos;
    });
}

// Distributions start browsers through scripts. A user's own script may choose among several.
bool isDistributionsScript(const fs::path& script) {
    return isAtOrBelow(script.native(), "/opt") ||
           (isAtOrBelow(script.native(), "/usr") && !isAtOrBelow(script.native(), "/usr/local"));
}

// Whether what is started opens the address itself. A clone or a script may hand it on, perhaps
// back to where it came from.
bool isLastStop(const InstalledApplication& application, const ExecLine& line) {
    const auto resolved = resolveProgram(application.entry, line);
    if (!resolved || !application.entry.cloneId.empty() || isShell(resolved->launcher)) {
        return false;
    }
    std::error_code code;
    const fs::path launcher = fs::canonical(resolved->launcher, code);
    const bool isScript = !resolved->interpreter.empty() || launcher != resolved->executable;
    if (isScript && !isDistributionsScript(launcher)) {
        return false;
    }
    if (isBrowserEngine(resolved->engine)) {
        return true;
    }
    const std::vector<std::string>& categories = application.entry.categories;
    return std::any_of(categories.begin(), categories.end(), [](const std::string& category) {
        return category == "WebBrowser" || category == "Email";
    });
}

enum class Outcome { started, failed, refused };

Outcome startApplication(const InstalledApplication& application, const std::string& address) {
    const ExecLine line = ExecLine::parse(application.entry.exec);
    const auto program = findProgram(line.program);
    if (!program) {
        return Outcome::failed;
    }
    std::vector<std::string> arguments = line.toArguments(
        {address}, {application.entry.icon, application.entry.name, application.file.string()});
    if (!contain(arguments, address)) {
        arguments.push_back(address); // an entry without a code for addresses
    }
    if (isReadByShell(*program, arguments, address)) {
        return Outcome::refused;
    }
    Environment environment = currentEnvironment();
    line.applyTo(environment);
    if (isLastStop(application, line)) {
        // Otherwise these hops would count for all links that are clicked in it later.
        environment.erase(linkHopsVariable);
    }
    startDetached(*program, arguments, environment);
    return Outcome::started;
}

} // namespace

void startDetached(const fs::path& program, const std::vector<std::string>& arguments,
                   const std::optional<Environment>& environment) {
    Process::Options options;
    options.executable = program;
    options.arguments = arguments;
    options.environment = environment;
    options.standardOutput = Process::Discard{};
    options.standardError = Process::Discard{};
    options.detached = true;
    const fs::path home = UserPaths::home();
    options.directory = itemExists(home) ? home : fs::path("/");
    (void)Process::run(options);
}

std::optional<fs::path> realXdgOpen() {
    return findProgram("xdg-open", mainExecutable());
}

bool openWithDefault(const std::string& scheme, const std::string& address) {
    try {
        const auto application = defaultApplication("x-scheme-handler/" + scheme);
        const Outcome outcome = application && !application->entry.terminal
                                    ? startApplication(*application, address)
                                    : Outcome::failed;
        if (outcome != Outcome::failed) {
            return outcome == Outcome::started;
        }
    } catch (const Error&) {
        // It can't be started after all.
    }
    const auto program = realXdgOpen();
    if (!program) {
        return false;
    }
    try {
        startDetached(*program, {address});
        return true;
    } catch (const PlatformError&) {
        return false;
    }
}

} // namespace quorvel
