#include "CommandLine/DuplicateCommand.h"

#include "Base/TerminalText.h"
#include "CommandLine/CloneLookup.h"
#include "CommandLine/CloneTexts.h"
#include "CommandLine/CopyTexts.h"
#include "LaunchKit/CloneDuplication.h"
#include "LaunchKit/MenuEntries.h"

#include <nlohmann/json.hpp>

#include <ostream>

namespace quorvel {
namespace {

DuplicatedClone duplicated(const CommandContext& context, const InstanceRecord& original,
                           const DuplicateOptions& options) {
    const WrapperFactory factory(
        options.runner.empty() ? std::nullopt : std::optional(absoluteFile(options.runner)));
    CopyBar bar(context);
    try {
        return duplicateClone(factory, context.registry, original,
                              {.name = options.name,
                               .withData = options.withData,
                               .copy = bar.options(),
                               .warn = [&](const std::string& warning) {
                                   bar.erase();
                                   context.errors << terminalText(warning) << "\n" << std::flush;
                               }});
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
    const DuplicatedClone made = duplicated(context, original, options);
    repairMenu(context.registry.list());
    if (!made.clone.record) {
        throw CommandError("The clone at " + made.clone.wrapper.string() + " can’t be read back.");
    }
    if (json) {
        nlohmann::json form = jsonForm(*made.clone.record, context.workspace.runningApplications());
        if (made.data) {
            form["data"] = jsonForm(*made.data, made.findings);
        }
        context.output << document(form);
        return;
    }
    const std::string path = made.clone.wrapper.string();
    context.output << (context.outputIsTerminal ? terminalText(path) : path) << "\n" << std::flush;
    if (made.data) {
        context.errors << copyLine(*made.data) << findingLines(made.findings);
    }
}

} // namespace quorvel
