#include "CommandLine/DuplicateCommand.h"

#include "Base/TerminalText.h"
#include "CommandLine/CloneLookup.h"
#include "CommandLine/CloneTexts.h"
#include "CommandLine/CopyTexts.h"
#include "LaunchKit/Copying/CloneDuplication.h"
#include "LaunchKit/Menu/MenuEntries.h"
#include "Presentation/ChangeTexts.h"
#include "Presentation/SystemWords.h"

#include <nlohmann/json.hpp>

#include <ostream>

namespace quorvel {
namespace {

DuplicatedClone duplicated(const CommandContext& context, CopyBar& bar,
                           const InstanceRecord& original, const DuplicateOptions& options) {
    const WrapperFactory factory(options.runner);
    const auto say = [&](const std::string& line) {
        bar.erase();
        context.errors << line << std::flush;
    };
    try {
        return duplicateClone(
            factory, context.registry, original,
            {.name = options.name,
             .withData = options.withData,
             .copy = bar.options(),
             .found = [&](const CopyFindings& found) { say(keyringLine(found)); },
             .warn = [&](const std::string& warning) { say(terminalText(warning) + "\n"); }});
    } catch (const CopyCancelled&) {
        bar.erase();
        bar.deliverInterrupt();
        throw;
    }
}

} // namespace

void duplicateCommand(const CommandContext& context, const std::string& clone,
                      const DuplicateOptions& options, bool json) {
    const InstanceRecord original = findClone(context.registry, clone);
    CopyBar bar(context);
    const DuplicatedClone made = duplicated(context, bar, original, options);
    bar.erase();
    repairMenu(context.registry.list());
    if (!made.clone.record) {
        throw CommandError(unreadableText(made.clone.wrapper, inSystemWords));
    }
    if (json) {
        nlohmann::json form = jsonForm(*made.clone.record, context.workspace.runningApplications());
        if (made.data) {
            form["data"] = jsonForm(*made.data, made.findings);
        }
        context.output << document(form) << std::flush;
    } else {
        context.output << shownPath(context, made.clone.wrapper) << "\n" << std::flush;
        if (made.data) {
            context.errors << copyLine(*made.data) << findingLines(made.findings) << std::flush;
        }
    }
    // One that came too late to cancel the copy.
    bar.deliverInterrupt();
}

} // namespace quorvel
