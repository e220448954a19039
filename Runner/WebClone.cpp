#include "Runner/WebClone.h"

#include "LaunchKit/Homes/HomeLock.h"
#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/Launching/HelperProgram.h"
#include "LaunchKit/Launching/LogRotation.h"
#include "LaunchKit/Wrappers/WrapperLayout.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/PlatformError.h"
#include "Platform/processes/LoadedModule.h"
#include "Runner/RunnerMessages.h"
#include "WebHost/Handover.h"
#include "WebHost/Links/WebAddress.h"
#include "WebHost/Storage/WebHome.h"
#include "WebHost/WebHostModule.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <thread>

namespace quorvel {
namespace {

using Clock = std::chrono::steady_clock;

// The context of the module's callbacks.
struct Reporting {
    const InstanceConfig& config;
    const StartReport& report;
    bool hasFailed = false;
};

void reportStart(void* context) {
    static_cast<Reporting*>(context)->report.started();
}

void reportFailure(void* context, const char* sentence) {
    auto& reporting = *static_cast<Reporting*>(context);
    reporting.hasFailed = true;
    addToLog(reporting.config, sentence);
    (void)failWith(reporting.report, sentence, runnerUnavailable);
}

std::string variable(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

// The click that started this process is to bring the other one's window to the front.
std::string activationToken() {
    const std::string token = variable("XDG_ACTIVATION_TOKEN");
    return token.empty() ? variable("DESKTOP_STARTUP_ID") : token;
}

// Why the clone can't be shown, and the exit status for that.
struct Refusal {
    std::string reason;
    RunnerStatus status;
};

std::string quoted(const InstanceConfig& config) {
    return "“" + config.displayName + "”";
}

// Returns the clone's own copy where the system demands one, otherwise the installed module.
std::optional<std::filesystem::path> moduleFor(const WebCloneStart& start) {
    const Environment session = currentEnvironment();
    if (!modulesBelongToBundles() || session.contains(webHostVariable)) {
        return helperModule(std::string(webHostModule), webHostVariable, session);
    }
    const auto resources = std::filesystem::path(start.configFile).parent_path();
    const std::filesystem::path own = webHostOf(resources.parent_path().parent_path());
    return itemExists(own) ? std::optional(own) : std::nullopt;
}

// Returns what to do about a missing module; `ofPackages` where a package contains it.
std::string remedy(const std::string& ofPackages) {
    return modulesBelongToBundles() ? "create the clone again" : ofPackages;
}

std::optional<Refusal> addressRefusal(const WebCloneStart& start) {
    const StartAddress own = startAddress(start.config.url);
    if (own.kind == StartAddress::Case::refused) {
        return Refusal{quoted(start.config) + " can’t be opened at its address: " + own.text,
                       runnerBadConfig};
    }
    if (start.addresses.empty()) {
        return std::nullopt;
    }
    const StartAddress given = startAddress(start.addresses.front());
    if (given.kind != StartAddress::Case::page || given.text != start.addresses.front()) {
        return Refusal{quoted(start.config) + " can’t open “" + start.addresses.front() +
                           "”: it is not a web address",
                       runnerBadAddress};
    }
    return std::nullopt;
}

int fail(const WebCloneStart& start, const StartReport& report, const Refusal& refusal) {
    addToLog(start.config, refusal.reason);
    return failWith(report, refusal.reason, refusal.status);
}

int show(const WebCloneStart& start, const std::filesystem::path& module, const StartReport& report,
         const SignalForwarder& signals) {
    const FileHandle listener = listenForHandovers(start.config.resolvedHome());
    const LoadedModule loaded = loadModule(module, webHostFunction);
    if (loaded.function == nullptr) {
        addToLog(start.config, loaded.problem);
        return fail(start, report,
                    {"the web host for " + quoted(start.config) + " can’t be loaded; " +
                         remedy("install the package libwebkitgtk-6.0-4"),
                     runnerUnavailable});
    }
    signals.stop();
    Reporting reporting{start.config, report};
    QuorvelWebHostRequest request{};
    request.abi = webHostAbi;
    request.configFile = start.configFile.c_str();
    request.windowWord = start.windowWord.c_str();
    request.address = start.addresses.empty() ? nullptr : start.addresses.front().c_str();
    request.listener = listener.descriptor();
    request.context = &reporting;
    request.started = reportStart;
    request.failed = reportFailure;
    using Run = QuorvelWebHostRun;
    const int status =
        reinterpret_cast<Run>(loaded.function)(&request); // NOLINT: as the loader has it
    if (status == runnerUnavailable && !reporting.hasFailed) {
        return fail(start, report,
                    {quoted(start.config) + " was made by another version of Quorvel than the web "
                                            "host that is installed; create it again",
                     runnerUnavailable});
    }
    return status;
}

// Returns whether a process that shows the clone already has taken over.
bool handedOver(const WebCloneStart& start, const StartReport& report, Clock::duration patience) {
    const WebHandover handover{start.addresses.empty() ? "" : start.addresses.front(),
                               activationToken()};
    const bool isTaken = sendHandover(start.config.resolvedHome(), handover,
                                      std::chrono::ceil<std::chrono::milliseconds>(std::max(
                                          patience, Clock::duration(std::chrono::seconds(1)))));
    if (isTaken) {
        report.started();
    }
    return isTaken;
}

// Shows the clone in this process or in the one that holds its folder. That doesn't answer while it
// is starting or ending.
int showOnce(const WebCloneStart& start, const std::filesystem::path& module,
             const StartReport& report, const SignalForwarder& signals) {
    constexpr std::chrono::seconds patience{15};
    constexpr std::chrono::milliseconds pause{50};
    const auto deadline = Clock::now() + patience;
    while (true) {
        try {
            const std::optional<FileLock> lock = lockHome(start.config);
            setAsideLargeLog(start.config.resolvedHome());
            // Without locks, only its answer shows that there is another one.
            return !lock && handedOver(start, report, patience)
                       ? 0
                       : show(start, module, report, signals);
        } catch (const HomeInUse& error) {
            if (handedOver(start, report, deadline - Clock::now())) {
                return 0;
            }
            if (Clock::now() >= deadline) {
                return fail(start, report, {error.what(), runnerHomeInUse});
            }
        }
        std::this_thread::sleep_for(pause);
    }
}

} // namespace

int runWebClone(const WebCloneStart& start, const StartReport& report,
                const SignalForwarder& signals) {
    if (const auto refusal = addressRefusal(start)) {
        return fail(start, report, *refusal);
    }
    const auto module = moduleFor(start);
    if (!module) {
        return fail(start, report,
                    {"the web host for " + quoted(start.config) + " is not installed; " +
                         remedy("on Linux, the packages quorvel and libwebkitgtk-6.0-4 contain it"),
                     runnerUnavailable});
    }
    try {
        WebHome{start.config.resolvedHome()}.createHome();
        return showOnce(start, *module, report, signals);
    } catch (const PlatformError& error) {
        return fail(start, report, {error.what(), runnerCannotStart});
    }
}

} // namespace quorvel
