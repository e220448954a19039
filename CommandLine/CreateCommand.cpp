#include "CommandLine/CreateCommand.h"

#include "Base/TerminalText.h"
#include "CommandLine/AppLookup.h"
#include "CommandLine/CloneCommands.h"
#include "CommandLine/CloneLookup.h"
#include "CommandLine/CloneTexts.h"
#include "CommandLine/Confirmation.h"
#include "CommandLine/CopyTexts.h"
#include "LaunchKit/Copying/CloneWithData.h"
#include "LaunchKit/Copying/DataSeed.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/Menu/MenuEntries.h"
#include "LaunchKit/Targets/NoSessionBus.h"
#include "LaunchKit/Targets/ShippedProfiles.h"
#include "Platform/entries/MenuEntry.h"
#include "Presentation/AppTexts.h"
#include "Presentation/ChangeTexts.h"
#include "Presentation/SystemWords.h"

#include <nlohmann/json.hpp>

#include <ostream>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

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

// Warns that the first window of a clone that was just made may appear under the original.
void noteLateEntry(const CommandContext& context, const InstanceConfig& config) {
    // Without the bus, the window belongs to no application until the entry is noticed.
    if (config.kind == ShortcutKind::app && !takeBusAway(config.environment) &&
        noticesEntriesLate()) {
        context.errors << "This desktop notices new menu entries only after some seconds, so it "
                          "may show the clone’s first window under the original.\n";
    }
}

} // namespace

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
        openClone(context, *record);
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

} // namespace quorvel
