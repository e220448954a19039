#include "CommandLine/StopCommand.h"

#include "Base/TerminalText.h"
#include "CommandLine/CloneLookup.h"
#include "CommandLine/CloneTexts.h"
#include "CommandLine/Confirmation.h"
#include "LaunchKit/Changes/CloneStop.h"
#include "LaunchKit/InstanceRecord.h"
#include "Platform/processes/InterruptFlag.h"
#include "Presentation/StopTexts.h"
#include "Presentation/SystemWords.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <ostream>

namespace quorvel {
namespace {

std::string processes(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " process" : " processes");
}

std::string quoted(const InstanceRecord& record) {
    return "“" + record.config.displayName + "”";
}

std::string stillRunning(const InstanceRecord& record, std::size_t left) {
    return stillRunningText(record.config.displayName, left, inSystemWords);
}

std::string sentence(const InstanceRecord& record, const StoppedClone& stopped) {
    switch (stopped.outcome) {
    case StoppedClone::Case::ended:
        return quoted(record) + " has ended: " + processes(stopped.ended) + ".";
    case StoppedClone::Case::forced:
        return quoted(record) + " was ended by force: " + processes(stopped.ended) + ".";
    case StoppedClone::Case::notRunning:
    case StoppedClone::Case::elsewhere:
    case StoppedClone::Case::running:
        break;
    }
    return quoted(record) + " is not running.";
}

} // namespace

void stopCommand(const CommandContext& context, const std::string& clone,
                 const StopCommandOptions& options, bool json) {
    using Case = StoppedClone::Case;
    const InstanceRecord record = findClone(context.registry, clone);
    InterruptFlag interruption;
    const auto mayForce = [&](std::size_t left) {
        interruption.deliver(); // from here on, an interrupt ends the program at once
        return options.force ||
               (context.inputIsTerminal &&
                confirmed(context, stillRunning(record, left) + " End it by force? " +
                                       lossText(inSystemWords)));
    };
    const std::chrono::duration<double> wait(options.wait);
    const StoppedClone stopped =
        stopClone(context.registry, record,
                  {.patience = std::chrono::duration_cast<std::chrono::milliseconds>(wait),
                   .mayForce = mayForce,
                   .cancelled = &interruption.flag()});
    if (stopped.outcome == Case::running && interruption.flag()) {
        context.errors << terminalText(quoted(record)) +
                              " was asked to end, and may still be doing so.\n"
                       << std::flush;
        interruption.deliver();
    }
    if (json) {
        context.output << document({{"bundleURL", record.bundleURL.string()},
                                    {"outcome", rawString(stopped.outcome)},
                                    {"ended", stopped.ended},
                                    {"left", stopped.left}});
    }
    if (stopped.outcome == Case::running) {
        throw CommandError(stillRunning(record, stopped.left) +
                           (options.force ? "" : " With --force, it is ended by force."));
    }
    if (stopped.outcome == Case::elsewhere) {
        throw CommandError(usedElsewhereText(record.config.displayName, inSystemWords));
    }
    if (!json) {
        context.output << terminalText(sentence(record, stopped)) << "\n";
    }
}

} // namespace quorvel
