#include "WebHost/WebHostModule.h"

#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/InstanceLauncher.h"
#include "LaunchKit/Launching/WindowWord.h"
#include "Platform/entries/MenuEntry.h"
#include "Platform/homes/UserFolders.h"
#include "Platform/homes/UserPaths.h"
#include "Platform/processes/Environment.h"
#include "Platform/processes/FileMask.h"
#include "Platform/statusitem/SessionBus_linux.h"
#include "WebHost/Links/WebAddress.h"
#include "WebHost/Storage/WebEnvironment_linux.h"
#include "WebHost/WebHost_linux.h"
#include "WebHost/Window/DrawingChoice.h"
#include "WebHost/Window/OpenGLName_linux.h"

#include <gtk/gtk.h>

#include <unistd.h>

namespace quorvel {
namespace {

constexpr int unavailable = 69; // the runner's status

// Why the window can't be shown, as a sentence.
class HostError : public Error {
public:
    using Error::Error;
};

std::string quoted(const InstanceConfig& config) {
    return "“" + config.displayName + "”";
}

// Finds the clone's menu entry, which is in the user's folders and not in the clone's.
void findMenuEntry(const QuorvelWebHostRequest& request, WebHostOptions& options) {
    options.desktopId = textOf(request.windowWord) + ".desktop";
    const auto wrapper =
        std::filesystem::path(request.configFile).parent_path().parent_path().parent_path();
    const std::string identity = cloneIdentity(wrapper);
    if (const auto published = publishedEntryOf(identity)) {
        options.desktopId = published->fileName;
        options.icon = published->entry.icon;
    }
}

// Sends what the engine and its processes print to the clone's log.
void printToLog(const std::string& home) {
    if (const auto log = InstanceLauncher::instanceLogHandle(home)) {
        (void)::dup2(log->descriptor(), STDOUT_FILENO);
        (void)::dup2(log->descriptor(), STDERR_FILENO);
    }
}

ObjectRef<GDBusConnection> requireBus(const InstanceConfig& config) {
    ObjectRef<GDBusConnection> bus = connectToSessionBus();
    if (!bus) {
        throw HostError(quoted(config) + " needs a session bus, and none answers; install the "
                                         "package dbus-user-session, and log in again");
    }
    return bus;
}

void requireDisplay(const InstanceConfig& config, const std::string& word) {
    g_set_prgname(word.c_str());
    g_set_application_name(config.displayName.c_str());
    if (gtk_init_check() == FALSE) {
        throw HostError(quoted(config) + " needs a display, and none can be opened");
    }
}

// Returns why OpenGL does not draw, or an empty text. Comes before the first window.
std::string avoidSlowOpenGL(const Environment& environment) {
    if (environment.contains(rendererVariable)) {
        return "";
    }
    std::string reason = reasonAgainst(openGLName());
    if (!reason.empty()) {
        g_setenv(rendererVariable, softwareRenderer, TRUE);
    }
    return reason;
}

void show(const QuorvelWebHostRequest& request) {
    const auto config = InstanceConfig::read(request.configFile);
    if (!config) {
        throw HostError("no readable configuration at " + textOf(request.configFile));
    }
    // All that depends on the user's own folders comes before they are replaced.
    const StartAddress start = startAddress(config->url);
    WebHostOptions options{.name = config->displayName,
                           .homeAddress = start.kind == StartAddress::Case::page ? start.text : "",
                           .address = textOf(request.address),
                           .home = WebHome{config->resolvedHome()},
                           .downloads = config->shareUserFolders
                                            ? userFolder("Downloads", UserPaths::home())
                                            : config->resolvedHome() + "/Downloads",
                           .keepsLinks = config->links == linksInside,
                           .listener = request.listener};
    findMenuEntry(request, options);
    if (config->menuBarIcon) {
        options.statusIcon = statusIconName(options.icon, config->menuBarIconTemplate);
    }
    const mode_t userMask = setFileMask(077);
    options.home.create();
    const Environment session = currentEnvironment();
    Environment environment =
        webEnvironment(options.home.home, session, config->resolvedEnvironment());
    const OutsideLinks links(options.home.home, config->links, session, environment, userMask);
    options.links = &links;
    options.againstOpenGL = reasonAgainstOpenGL(environment);
    if (!options.againstOpenGL.empty()) {
        environment[rendererVariable] = softwareRenderer;
    }
    replaceEnvironment(environment);
    const ObjectRef<GDBusConnection> bus = requireBus(*config);
    options.bus = bus.get();
    requireDisplay(*config, textOf(request.windowWord));
    if (options.againstOpenGL.empty()) {
        options.againstOpenGL = avoidSlowOpenGL(environment);
    }
    printToLog(options.home.home);
    options.started = [&request] { request.started(request.context); };
    WebHost(std::move(options)).run();
}

} // namespace
} // namespace quorvel

extern "C" __attribute__((visibility("default"))) int
quorvel_web_host_run(const QuorvelWebHostRequest* request) {
    if (request->abi != quorvel::webHostAbi) {
        return quorvel::unavailable; // nothing else of the request is understood
    }
    try {
        quorvel::show(*request);
        return 0;
    } catch (const std::exception& error) {
        request->failed(request->context, error.what());
        return quorvel::unavailable;
    }
}
