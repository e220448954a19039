#include "CommandLine/ChangeCommands.h"

#include "Base/TerminalText.h"
#include "CommandLine/CloneLookup.h"
#include "CommandLine/CloneTexts.h"
#include "LaunchKit/Changes/CloneRefresh.h"
#include "LaunchKit/Changes/CloneRenaming.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/Menu/MenuEntries.h"
#include "Platform/processes/InterruptFlag.h"
#include "Presentation/ChangeTexts.h"
#include "Presentation/JoinedText.h"
#include "Presentation/SystemWords.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <iterator>
#include <ostream>

namespace quorvel {
namespace {

nlohmann::json changeForm(const ChangedClone& changed, const RunningApplications& running) {
    nlohmann::json form = jsonForm(changed.record, running);
    form["changed"] = changed.isChanged;
    form["kept"] = changed.kept;
    form["warnings"] = changed.warnings;
    return form;
}

void printNotes(const CommandContext& context, const ChangedClone& changed,
                const RunningApplications& running) {
    const bool isRunning = changed.isRunning || running.contains(changed.record.config.bundleId);
    for (const std::string& note : changeNotes(changed, isRunning, inSystemWords)) {
        context.errors << terminalText(note) << "\n";
    }
}

void report(const CommandContext& context, const ChangedClone& changed, bool json) {
    repairMenu(context.registry.list());
    const RunningApplications running = context.workspace.runningApplications();
    if (json) {
        context.output << document(changeForm(changed, running));
        return;
    }
    context.output << shownPath(context, changed.record.bundleURL) << "\n" << std::flush;
    printNotes(context, changed, running);
}

std::vector<InstanceRecord> clonesToRefresh(const CommandContext& context,
                                            const RefreshOptions& options) {
    if (options.all != options.clones.empty()) {
        throw UsageError(options.all ? "--all and clones can’t be given together"
                                     : "refresh needs clones, or --all");
    }
    if (options.all) {
        return context.registry.list();
    }
    std::vector<InstanceRecord> records;
    std::transform(options.clones.begin(), options.clones.end(), std::back_inserter(records),
                   [&](const std::string& words) { return findClone(context.registry, words); });
    return records;
}

nlohmann::json reasonNames(const std::vector<StaleReason>& reasons) {
    nlohmann::json names = nlohmann::json::array();
    for (const StaleReason reason : reasons) {
        names.push_back(rawString(reason));
    }
    return names;
}

std::string reasonTexts(const std::vector<StaleReason>& reasons) {
    std::vector<std::string> texts;
    texts.reserve(reasons.size());
    for (const StaleReason reason : reasons) {
        texts.push_back(reasonText(reason, inSystemWords));
    }
    return joined(texts, ", ");
}

// Returns how many failed. An interrupt ends it after the clone that it is at.
std::size_t refreshEach(const CommandContext& context, const std::vector<InstanceRecord>& records,
                        const CloneRefresh& refresh, nlohmann::json* forms,
                        const InterruptFlag& interruption) {
    const RunningApplications running = context.workspace.runningApplications();
    std::size_t failures = 0;
    for (auto record = records.begin(); record != records.end() && !interruption.flag(); ++record) {
        try {
            const ChangedClone changed = refresh.refresh(record->bundleURL);
            if (forms != nullptr) {
                forms->push_back(changeForm(changed, running));
            } else if (changed.isChanged) {
                context.output << shownPath(context, changed.record.bundleURL) << "\n"
                               << std::flush;
                printNotes(context, changed, running);
            }
        } catch (const std::exception& error) {
            ++failures;
            context.errors << terminalText(error.what()) << "\n";
        }
    }
    return failures;
}

// Each failure was reported already.
void requireNoFailures(std::size_t failures, std::size_t clones, const char* action) {
    if (failures > 0) {
        throw CommandError(std::to_string(failures) + " of " + std::to_string(clones) +
                           " clones couldn’t be " + action + ".");
    }
}

} // namespace

void editCommand(const CommandContext& context, const std::string& clone,
                 const EditOptions& options, bool json) {
    const InstanceRecord record = findClone(context.registry, clone);
    report(context, editClone(record.bundleURL, editFrom(options, context.registry)), json);
}

void renameCommand(const CommandContext& context, const std::string& clone,
                   const RenameOptions& options, bool json) {
    const InstanceRecord record = findClone(context.registry, clone);
    if (options.moveData &&
        context.workspace.runningApplications().contains(record.config.bundleId)) {
        throw CommandError("“" + record.config.displayName +
                           "” is running, so its data can’t be moved.");
    }
    report(context, renameClone(record.bundleURL, {options.name, options.moveData}), json);
}

void refreshCommand(const CommandContext& context, const RefreshOptions& options, bool json) {
    const std::vector<InstanceRecord> records = clonesToRefresh(context, options);
    InterruptFlag interruption;
    nlohmann::json forms = nlohmann::json::array();
    const std::size_t failures = refreshEach(context, records, CloneRefresh(options.runner),
                                             json ? &forms : nullptr, interruption);
    repairMenu(context.registry.list());
    if (json) {
        context.output << document(forms) << std::flush;
    }
    interruption.deliver();
    requireNoFailures(failures, records.size(), "refreshed");
}

void listStaleCommand(const CommandContext& context, const InstanceRegistry& registry,
                      const std::optional<std::filesystem::path>& runner, bool json) {
    const CloneRefresh refresh(runner);
    const RunningApplications running = context.workspace.runningApplications();
    nlohmann::json forms = nlohmann::json::array();
    const std::vector<InstanceRecord> records = registry.list();
    std::size_t failures = 0;
    for (const InstanceRecord& record : records) {
        std::vector<StaleReason> reasons;
        try {
            reasons = refresh.reasonsFor(record);
        } catch (const std::exception& error) {
            ++failures;
            context.errors << terminalText(error.what()) << "\n";
        }
        if (reasons.empty()) {
            continue;
        }
        if (json) {
            nlohmann::json form = jsonForm(record, running);
            form["stale"] = reasonNames(reasons);
            forms.push_back(std::move(form));
        } else {
            context.output << terminalText(record.config.displayName) << ": "
                           << reasonTexts(reasons) << "\n";
        }
    }
    if (json) {
        context.output << document(forms);
    }
    requireNoFailures(failures, records.size(), "checked");
}

} // namespace quorvel
