#include "CommandLine/CloneCommands.h"

#include "Base/PathText.h"
#include "Base/TerminalText.h"
#include "CommandLine/AppLookup.h"
#include "CommandLine/ChangeCommands.h"
#include "CommandLine/CloneLookup.h"
#include "CommandLine/CloneTexts.h"
#include "CommandLine/Confirmation.h"
#include "CommandLine/CopyTexts.h"
#include "LaunchKit/Copying/CloneWithData.h"
#include "LaunchKit/Copying/DataSeed.h"
#include "LaunchKit/InstanceLauncher.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/Launching/WindowIdentity.h"
#include "LaunchKit/Menu/MenuEntries.h"
#include "LaunchKit/Targets/NoSessionBus.h"
#include "LaunchKit/Targets/ShippedProfiles.h"
#include "Platform/entries/MenuEntry.h"
#include "Platform/windows/ActivationError.h"
#include "Presentation/AppTexts.h"
#include "Presentation/ChangeTexts.h"
#include "Presentation/SystemWords.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <future>
#include <iterator>
#include <memory>
#include <ostream>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

void openWrapper(const CommandContext& context, const InstanceRecord& record) {
    InstanceLauncher::prepareHome(record.config);
    // Shared: the answer comes on another thread, which may use it after this function returns.
    const auto opened = std::make_shared<std::promise<std::optional<PlatformError>>>();
    context.workspace.openApplication(
        record.bundleURL, true,
        [opened](std::optional<PlatformError> error) { opened->set_value(std::move(error)); });
    const auto error = opened->get_future().get();
    if (error && isActivationError(*error)) {
        context.errors << terminalText(error->description()) << "\n"; // but it is open
    } else if (error) {
        throw *error;
    }
}

// Warns that the first window of a clone that was just made may appear under the original.
void noteLateEntry(const CommandContext& context, const InstanceConfig& config) {
    // Without the bus, the window belongs to no application until the entry is noticed.
    if (config.kind == ShortcutKind::app && !takeBusAway(config.environment) &&
        noticesEntriesLate()) {
        context.errors << "This desktop notices new menu entries only after some seconds, so it "
                          "may show the clone’s first window under the original.\n";
    }
}

// Returns the log's size in bytes; std::nullopt if there is no log.
std::optional<std::uintmax_t> logSizeOf(const InstanceConfig& config) {
    std::error_code code;
    const std::uintmax_t size =
        fs::file_size(joinAsText(config.resolvedHome(), instanceLogName), code);
    return code ? std::nullopt : std::optional(size);
}

CommandError withHint(const InvalidRequest& refused, const char* hint) {
    return CommandError(refused.what() + std::string(" ") + hint);
}

// What to make. Without a seed, the clone starts with an empty data folder.
struct Creation {
    WrapperFactory factory{};
    WrapperFactory::Request request{};
    std::optional<std::vector<DataPart>> seed{};
    CopyBar* bar = nullptr; ///< for the seed
};

// What was made; without a seed, nothing is known about the data.
struct Created {
    MadeClone clone{};
    std::optional<FolderCopyReport> data{};
    CopyFindings findings{};
};

Created madeWithSeed(const CommandContext& context, const Creation& creation,
                     const RequestPermissions& permissions, const WrapperFactory::Warning& warn) {
    CopyBar& bar = *creation.bar;
    const auto found = [&](const CopyFindings& findings) {
        bar.erase();
        context.errors << keyringLine(findings) << std::flush;
    };
    try {
        CloneWithData made = createCloneWithData(
            creation.factory, creation.request, permissions,
            {.parts = *creation.seed, .copy = bar.options(), .found = found}, warn);
        bar.erase();
        context.errors << copyLine(made.data) << findingLines(made.findings) << std::flush;
        return {std::move(made.clone), made.data, std::move(made.findings)};
    } catch (const CopyCancelled&) {
        bar.erase();
        bar.deliverInterrupt();
        throw;
    }
}

// Refusals say which option allows what was asked for.
Created madeClone(const CommandContext& context, const Creation& creation,
                  const RequestPermissions& permissions) {
    const auto warn = [&](const std::string& warning) {
        context.errors << terminalText(warning) << "\n" << std::flush;
    };
    try {
        if (creation.seed) {
            return madeWithSeed(context, creation, permissions, warn);
        }
        return {.clone = createClone(creation.factory, creation.request, permissions, warn)};
    } catch (const SharedHome& refused) {
        throw withHint(refused, "With --shared-home, it is used anyway.");
    } catch (const CloneExists& refused) {
        throw withHint(refused, "With --replace, it is replaced, and its data stays.");
    }
}

// Refuses a Snap, of which a clone would share the original's data. Then adds the variables that
// the app needs; what the user set comes first.
void considerTarget(WrapperFactory::Request& request, bool addsEnvironment) {
    const auto app = request.kind == ShortcutKind::app && request.targetApp
                         ? AppBundle::read(*request.targetApp, noEntitlements)
                         : std::nullopt;
    if (!app) {
        return;
    }
    if (const auto reason = snapReason(*app, inSystemWords)) {
        throw CommandError(*reason);
    }
    if (addsEnvironment) {
        request.environment.merge(ShippedProfiles::suggestedEnvironment(*app));
    }
}

// Asks before replacing a clone that can't be read, if the input is a terminal.
Created madeCloneAfterQuestion(const CommandContext& context, const Creation& creation,
                               RequestPermissions permissions) {
    try {
        return madeClone(context, creation, permissions);
    } catch (const DamagedClone& refused) {
        if (!context.inputIsTerminal) {
            throw withHint(refused, "With --replace, it is replaced.");
        }
    }
    const fs::path place = WrapperFactory::wrapperURL(creation.request);
    if (!confirmed(context,
                   "The clone at " + place.string() + " can’t be read any more. Replace it?")) {
        throw CommandError("Nothing was replaced.");
    }
    permissions.damagedClone = true;
    return madeClone(context, creation, permissions);
}

} // namespace

void inspectCommand(const CommandContext& context, const std::string& app, bool json) {
    const fs::path url = findApp(app);
    const std::optional<AppBundle> bundle = AppBundle::read(url);
    if (!bundle) {
        throw WrapperFactory::FactoryError::badTarget(url);
    }
    context.output << (json ? document(jsonForm(*bundle)) : description(*bundle));
}

void listCommand(const CommandContext& context, const ListOptions& options, bool json) {
    std::vector<fs::path> folders;
    std::transform(options.searchDirs.begin(), options.searchDirs.end(),
                   std::back_inserter(folders), absoluteFile);
    const InstanceRegistry registry =
        folders.empty() ? context.registry : InstanceRegistry(std::move(folders));
    if (options.stale) {
        listStaleCommand(context, registry, options.runner, json);
        return;
    }
    if (options.runner) {
        throw UsageError("--runner is for --stale");
    }
    const std::vector<InstanceRecord> records = registry.list();
    const RunningApplications running = context.workspace.runningApplications();
    if (!json) {
        context.output << listing(records, running);
        return;
    }
    nlohmann::json array = nlohmann::json::array();
    for (const InstanceRecord& record : records) {
        array.push_back(jsonForm(record, running));
    }
    context.output << document(array);
}

void showCommand(const CommandContext& context, const std::string& clone, bool json) {
    const InstanceRecord record = findClone(context.registry, clone);
    const RunningApplications running = context.workspace.runningApplications();
    const auto logSize = logSizeOf(record.config);
    if (!json) {
        context.output << description(record, {.running = running.contains(record.config.bundleId),
                                               .logSize = logSize,
                                               .grouping = windowGroupingOf(record.config)});
        return;
    }
    nlohmann::json object = jsonForm(record, running);
    if (logSize) {
        object["logSize"] = *logSize;
    }
    context.output << document(object);
}

void createCommand(const CommandContext& context, const CreateOptions& options, bool json) {
    WrapperFactory::Request request = requestFrom(options);
    request.links = linksChoice(context.registry, request.links);
    if (options.target) {
        request.targetApp = findApp(*options.target);
    }
    considerTarget(request, !options.noDefaultEnvironment);
    Creation creation{.factory = WrapperFactory(options.runner), .request = request};
    std::optional<CopyBar> bar;
    if (options.seed) {
        creation.seed = seedFor(request);
        creation.bar = &bar.emplace(context);
    }
    const Created made = madeCloneAfterQuestion(context, creation,
                                                {.sharedHome = options.sharedHome,
                                                 .existingClone = options.replace,
                                                 .damagedClone = options.replace});
    const auto& [wrapper, record] = made.clone;
    repairMenu(context.registry.list());
    if (!record) {
        throw CommandError(unreadableText(wrapper, inSystemWords));
    }
    if (!json) {
        context.output << shownPath(context, wrapper) << "\n" << std::flush;
    }
    if (options.launch) {
        openWrapper(context, *record);
        noteLateEntry(context, record->config);
    }
    if (json) {
        nlohmann::json form = jsonForm(*record, context.workspace.runningApplications());
        if (made.data) {
            form["data"] = jsonForm(*made.data, made.findings);
        }
        context.output << document(form) << std::flush;
    }
    if (bar) {
        bar->deliverInterrupt(); // one that came too late to cancel the copy
    }
}

void openCommand(const CommandContext& context, const std::string& clone, bool json) {
    const InstanceRecord record = findClone(context.registry, clone);
    openWrapper(context, record);
    if (json) {
        context.output << document({{"bundleURL", record.bundleURL.string()}});
    }
}

} // namespace quorvel
