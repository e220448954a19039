#include "CommandLine/MigrateCommand.h"

#include "Base/TerminalText.h"
#include "CommandLine/CloneLookup.h"
#include "CommandLine/CloneTexts.h"
#include "LaunchKit/Homes/FolderSharing.h"
#include "LaunchKit/InstanceLauncher.h"
#include "LaunchKit/InstanceRecord.h"
#include "Presentation/MigrationSummary.h"
#include "Presentation/SystemWords.h"

#include <nlohmann/json.hpp>

#include <ostream>

namespace quorvel {
namespace {

nlohmann::json jsonForm(const InstanceLauncher::Migration& migration) {
    nlohmann::json form{{"moved", nlohmann::json::object()}};
    for (const auto& [name, count] : migration.moved) {
        form["moved"][name] = count;
    }
    for (const InstanceLauncher::UnmovedItem& item : migration.unmoved) {
        form["unmoved"].push_back({{"path", item.path}, {"reason", item.reason}});
    }
    return form;
}

std::string movedLines(const InstanceLauncher::Migration& migration) {
    std::string lines;
    for (const std::string& part : movedParts(migration, inSystemWords)) {
        lines += "Moved " + part + "\n";
    }
    return lines;
}

} // namespace

void migrateCommand(const CommandContext& context, const std::string& clone, bool json) {
    const InstanceRecord record = findClone(context.registry, clone);
    const auto [migration, failure] = moveToSharedFolders(context.registry, record);
    context.output << (json ? document(jsonForm(migration)) : movedLines(migration)) << std::flush;
    if (!failure.empty()) {
        throw CommandError(failure);
    }
    if (!migration.unmoved.empty()) {
        for (const InstanceLauncher::UnmovedItem& item : migration.unmoved) {
            context.errors << terminalText(item.reason) << "\n";
        }
        throw CommandError("Not everything was moved; the rest is still in " +
                           record.config.resolvedHome() + ".");
    }
}

} // namespace quorvel
