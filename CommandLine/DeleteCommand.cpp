#include "CommandLine/DeleteCommand.h"

#include "Base/TerminalText.h"
#include "CommandLine/CloneLookup.h"
#include "CommandLine/CloneTexts.h"
#include "CommandLine/Confirmation.h"
#include "LaunchKit/Changes/CloneDeletion.h"
#include "LaunchKit/Homes/DataFolderGuard.h"
#include "LaunchKit/Homes/HomeLock.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/Menu/MenuEntries.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/ItemIdentity.h"
#include "Platform/removal/FileRemoval.h"
#include "Presentation/DeletionWarning.h"
#include "Presentation/SystemWords.h"

#include <nlohmann/json.hpp>

#include <ostream>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

// Returns the warning before deleting a running clone; empty if it does not run.
std::string runningWarning(const CommandContext& context, const InstanceRecord& record,
                           bool includingData) {
    if (!isHomeInUse(record.config) &&
        !context.workspace.runningApplications().contains(record.config.bundleId)) {
        return {};
    }
    const DeletionWarning warning =
        deletionWarning(record.config.displayName, includingData, inSystemWords);
    return warning.title + ". " + warning.text;
}

// Returns whether a deletion keeps the folder even if it includes data.
bool keepsData(const DataFolder& data) {
    return data.isNone || holdsUserHome(data.path);
}

std::string question(const InstanceRecord& record, const DeleteOptions& options) {
    const std::string text = "Delete “" + record.config.displayName + "”";
    const DataFolder data = dataFolderOf(record.config);
    const std::string folder = data.isNone ? record.config.resolvedHome() : data.path.string();
    if (!options.includingData || folder.empty()) {
        return text + "?";
    }
    if (keepsData(data)) {
        return text + "? Its data folder " + folder + " is kept.";
    }
    return text + (isSymbolicLink(data.path) ? " and the symbolic link " : " and everything in ") +
           folder + "?";
}

void confirm(const CommandContext& context, const DeleteOptions& options, const std::string& text) {
    if (!options.yes && !context.inputIsTerminal) {
        throw UsageError("--yes is required when input is not a terminal");
    }
    if (!options.yes && !confirmed(context, text)) {
        throw CommandError("Nothing was deleted.");
    }
}

nlohmann::json deletedDataForm(const DeletedData& data) {
    if (data.outcome == DeletedData::Case::partly) {
        return "partly";
    }
    return data.outcome == DeletedData::Case::removed;
}

// The configuration can't be read, so the location of the data is unknown.
void deleteDamagedClone(const CommandContext& context, const fs::path& wrapper,
                        const DeleteOptions& options, bool json) {
    if (options.includingData) {
        throw CommandError("The configuration of " + wrapper.string() +
                           " can’t be read, so its data folder is not known. Delete the clone "
                           "without --including-data.");
    }
    const auto asked = identityOf(wrapper);
    confirm(context, options,
            "The configuration of " + wrapper.string() +
                " can’t be read, so its data folder is not known and stays. Delete the clone?");
    removeDamagedWrapper(wrapper, asked.value_or(ItemIdentity{}));
    repairMenu(context.registry.list());
    if (json) {
        context.output << document({{"bundleURL", wrapper.string()}, {"deletedData", false}});
    }
}

} // namespace

void deleteCommand(const CommandContext& context, const std::string& clone,
                   const DeleteOptions& options, bool json) {
    if (const auto damaged = findDamagedClone(context.registry, clone)) {
        deleteDamagedClone(context, *damaged, options, json);
        return;
    }
    const InstanceRecord record = findClone(context.registry, clone);
    const bool takesData = options.includingData && !keepsData(dataFolderOf(record.config));
    const std::string warning = runningWarning(context, record, takesData);
    confirm(context, options, question(record, options) + (warning.empty() ? "" : " " + warning));
    if (options.yes && !warning.empty()) {
        context.errors << terminalText(warning) << "\n" << std::flush;
    }
    const DeletedData data = context.registry.remove(record, options.includingData);
    repairMenu(context.registry.list());
    if (json) {
        nlohmann::json form{{"bundleURL", record.bundleURL.string()},
                            {"deletedData", deletedDataForm(data)}};
        if (!data.wrapperReason.empty()) {
            form["deletedClone"] = false;
        }
        context.output << document(form);
    }
    if (data.isFailure()) {
        throw CommandError(data.description());
    }
    if (const std::string note = data.description(); !json && !note.empty()) {
        context.errors << terminalText(note) << "\n";
    }
}

} // namespace quorvel
