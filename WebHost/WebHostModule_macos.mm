#include "WebHost/WebHostModule.h"

#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/InstanceLauncher.h"
#include "Platform/homes/UserFolders.h"
#include "Platform/homes/UserPaths.h"
#include "Platform/processes/Environment.h"
#include "Platform/processes/FileMask.h"
#include "WebHost/Links/WebAddress.h"
#include "WebHost/Storage/WebStore_macos.h"
#include "WebHost/WebHost_macos.h"

#include <unistd.h>

namespace quorvel {
namespace {

constexpr int unavailable = 69; // the runner's status

// Why the window can't be shown, as a sentence.
class HostError : public Error {
  public:
    using Error::Error;
};

std::string textOrNone(const char* text) { return text == nullptr ? "" : text; }

// Sends what the engine and its processes print to the clone's log.
void printToLog(const std::string& home) {
    if (const auto log = InstanceLauncher::instanceLogHandle(home)) {
        (void)::dup2(log->descriptor(), STDOUT_FILENO);
        (void)::dup2(log->descriptor(), STDERR_FILENO);
    }
}

// The home stays the user's: without it the engine does not find the keychain, where it keeps the
// key to what pages encrypt.
void addVariables(const InstanceConfig& config) {
    Environment environment = currentEnvironment();
    for (const auto& [name, value] : config.resolvedEnvironment()) {
        environment.insert_or_assign(name, value);
    }
    replaceEnvironment(environment);
}

WebHostOptions optionsFor(const InstanceConfig& config, const QuorvelWebHostRequest& request) {
    const StartAddress start = startAddress(config.url);
    return {.name = config.displayName,
            .homeAddress = start.kind == StartAddress::Case::page ? start.text : "",
            .address = textOrNone(request.address),
            .home = WebHome{config.resolvedHome()},
            .downloads = config.shareUserFolders ? userFolder("Downloads", UserPaths::home())
                                                 : config.resolvedHome() + "/Downloads",
            .keepsLinks = config.links == linksInside,
            .hasStatusItem = config.menuBarIcon,
            .isStatusItemTemplate = config.menuBarIconTemplate,
            .listener = request.listener,
            .links = std::make_shared<OutsideOpener>(config.links)};
}

void show(const QuorvelWebHostRequest& request) {
    const auto config = InstanceConfig::read(request.configFile);
    if (!config) {
        throw HostError("no readable configuration at " + textOrNone(request.configFile));
    }
    WebHostOptions options = optionsFor(*config, request);
    setFileMask(077);
    options.home.create();
    addVariables(*config);
    const WebStore store = openWebStore(options.home.home, options.name);
    if (store.store == nil) {
        throw HostError(store.problem);
    }
    options.store = store.store;
    printToLog(options.home.home);
    const auto* const asked = &request;
    options.started = [asked] { asked->started(asked->context); };
    runWebHost(std::move(options));
}

} // namespace
} // namespace quorvel

extern "C" __attribute__((visibility("default"))) int
quorvel_web_host_run(const QuorvelWebHostRequest* request) {
    if (request->abi != quorvel::webHostAbi) {
        return quorvel::unavailable; // nothing else of the request is understood
    }
    @autoreleasepool {
        try {
            quorvel::show(*request);
            return 0;
        } catch (const std::exception& error) {
            request->failed(request->context, error.what());
            return quorvel::unavailable;
        }
    }
}
