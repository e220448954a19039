#include "Base/TerminalText.h"
#include "CommandLine/CloneCommands.h"
#include "CommandLine/CloneLookup.h"
#include "CommandLine/CloneTexts.h"
#include "CommandLine/Confirmation.h"
#include "LaunchKit/CloneDeletion.h"
#include "LaunchKit/DataFolderGuard.h"
#include "LaunchKit/HomeLock.h"
#include "Platform/files/FileSystem.h"

#include "LaunchKit/InstanceRecord.h"

#include <nlohmann/json.hpp>
#include <ostream>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

// What a person is told before data is deleted under a living program; empty when there is none.
std::string runningWarning(const Surroundings& with, const InstanceRecord& record) {
    return isHomeInUse(record.config) ||
                   with.workspace.runningApplications().contains(record.config.bundleId)
               ? "“" + record.config.displayName +
                     "” is running: it loses what it has open, and may write data anew."
               : "";
}

// Whether it is nothing that a deletion takes, even when asked.
bool keepsData(const DataFolder& data) {
    return data.isNone || holdsUserHome(data.path);
}

std::string question(const InstanceRecord& record, const DeleteOptions& options,
                     const std::string& warning) {
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
           folder + "?" + (warning.empty() ? "" : " " + warning);
}

void confirm(const Surroundings& with, const DeleteOptions& options, const std::string& text) {
    if (!options.yes && !with.inputIsTerminal) {
        throw UsageError("Deleting needs --yes where nobody can be asked");
    }
    if (!options.yes && !confirmed(with, text)) {
        throw CommandError("Nothing was deleted.");
    }
}

nlohmann::json deletedDataForm(const DeletedData& data) {
    if (data.outcome == DeletedData::Case::partly) {
        return "partly";
    }
    return data.outcome == DeletedData::Case::removed;
}

// Nobody knows where such a clone's data is.
void deleteDamagedClone(const Surroundings& with, const fs::path& wrapper,
                        const DeleteOptions& options, bool json) {
    if (options.includingData) {
        throw CommandError("The configuration of " + wrapper.string() +
                           " can’t be read, so its data folder is not known. Delete the clone "
                           "without --including-data.");
    }
    confirm(with, options,
            "The configuration of " + wrapper.string() +
                " can’t be read, so its data folder is not known and stays. Delete the clone?");
    removeWrapper(wrapper);
    if (json) {
        with.output << document({{"bundleURL", wrapper.string()}, {"deletedData", false}});
    }
}

} // namespace

void deleteCommand(const Surroundings& with, const std::string& clone, const DeleteOptions& options,
                   bool json) {
    if (const auto damaged = findDamagedClone(clone)) {
        deleteDamagedClone(with, *damaged, options, json);
        return;
    }
    const InstanceRecord record = findClone(with.registry, clone);
    const bool takesData = options.includingData && !keepsData(dataFolderOf(record.config));
    const std::string warning = takesData ? runningWarning(with, record) : "";
    confirm(with, options, question(record, options, warning));
    if (options.yes && !warning.empty()) {
        with.errors << terminalText(warning) << "\n" << std::flush;
    }
    const DeletedData data = with.registry.remove(record, options.includingData);
    if (json) {
        nlohmann::json form{{"bundleURL", record.bundleURL.string()},
                            {"deletedData", deletedDataForm(data)}};
        if (!data.wrapperReason.empty()) {
            form["deletedClone"] = false;
        }
        with.output << document(form);
    }
    if (data.isFailure()) {
        throw CommandError(data.description());
    }
    if (const std::string note = data.description(); !json && !note.empty()) {
        with.errors << terminalText(note) << "\n";
    }
}

} // namespace quorvel
