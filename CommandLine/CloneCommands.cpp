#include "CommandLine/CloneCommands.h"

#include "Base/PathText.h"
#include "Base/TerminalText.h"
#include "CommandLine/AppLookup.h"
#include "CommandLine/ChangeCommands.h"
#include "CommandLine/CloneLookup.h"
#include "CommandLine/CloneTexts.h"
#include "CommandLine/PathWords.h"
#include "LaunchKit/InstanceLauncher.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/Launching/WindowIdentity.h"
#include "LaunchKit/WrapperFactory.h"
#include "Platform/windows/ActivationError.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <future>
#include <iterator>
#include <memory>
#include <ostream>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

// Returns the log's size in bytes; std::nullopt if there is no log.
std::optional<std::uintmax_t> logSizeOf(const InstanceConfig& config) {
    std::error_code code;
    const std::uintmax_t size =
        fs::file_size(joinAsText(config.resolvedHome(), instanceLogName), code);
    return code ? std::nullopt : std::optional(size);
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

void openClone(const CommandContext& context, const InstanceRecord& record) {
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

void openCommand(const CommandContext& context, const std::string& clone, bool json) {
    const InstanceRecord record = findClone(context.registry, clone);
    openClone(context, record);
    if (json) {
        context.output << document({{"bundleURL", record.bundleURL.string()}});
    }
}

} // namespace quorvel
