#include "CommandLine/CloneCommands.h"

#include "Base/TerminalText.h"
#include "CommandLine/CloneLookup.h"
#include "CommandLine/CloneTexts.h"
#include "CommandLine/Confirmation.h"
#include "LaunchKit/InstanceLauncher.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/RequestCheck.h"
#include "Platform/files/FileSystem.h"

#include <nlohmann/json.hpp>

#include <future>
#include <memory>
#include <ostream>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

// A script gets the path as it is; a terminal must not be steered by what a name holds.
std::string shownPath(const Surroundings& with, const fs::path& path) {
    return with.outputIsTerminal ? terminalText(path.string()) : path.string();
}

void openWrapper(const Surroundings& with, const InstanceRecord& record) {
    InstanceLauncher::prepareHome(record.config);
    // Shared, since the answer comes on another thread, which may finish with it after us.
    const auto opened = std::make_shared<std::promise<std::optional<PlatformError>>>();
    with.workspace.openApplication(
        record.bundleURL, true,
        [opened](std::optional<PlatformError> error) { opened->set_value(std::move(error)); });
    if (const auto error = opened->get_future().get()) {
        throw *error;
    }
}

// In bytes; nothing where there is no log.
std::optional<std::uintmax_t> logSizeOf(const InstanceConfig& config) {
    std::error_code code;
    const std::uintmax_t size =
        fs::file_size(joinAsText(config.resolvedHome(), instanceLogName), code);
    return code ? std::nullopt : std::optional(size);
}

// Asks before it takes the place of a clone that can't be read, where somebody can be asked.
void checkCreation(const Surroundings& with, const WrapperFactory::Request& request,
                   const std::optional<fs::path>& runner, bool sharedHome) {
    try {
        checkRequest(request, runner, {.sharedHome = sharedHome});
    } catch (const SharedHome& refused) {
        throw CommandError(std::string(refused.what()) + " With --shared-home, it is used anyway.");
    } catch (const DamagedClone&) {
        if (!with.inputIsTerminal) {
            throw;
        }
        const fs::path place = WrapperFactory::wrapperURL(request);
        if (!confirmed(with,
                       "The clone at " + place.string() + " can’t be read any more. Replace it?")) {
            throw CommandError("Nothing was replaced.");
        }
        checkRequest(request, runner, {.sharedHome = sharedHome, .damagedClone = true});
    }
}

} // namespace

void inspectCommand(const Surroundings& with, const std::string& app, bool json) {
    const fs::path url = absoluteFile(app);
    const std::optional<AppBundle> bundle = AppBundle::read(url);
    if (!bundle) {
        throw WrapperFactory::FactoryError::badTarget(url);
    }
    with.output << (json ? document(jsonForm(*bundle)) : description(*bundle));
}

void listCommand(const Surroundings& with, const std::vector<std::string>& searchDirs, bool json) {
    InstanceRegistry registry = with.registry;
    if (!searchDirs.empty()) {
        registry.searchDirs.clear();
        for (const std::string& folder : searchDirs) {
            registry.searchDirs.push_back(absoluteFile(folder));
        }
    }
    const std::vector<InstanceRecord> records = registry.list();
    const RunningApplications running = with.workspace.runningApplications();
    if (!json) {
        with.output << listing(records, running);
        return;
    }
    nlohmann::json array = nlohmann::json::array();
    for (const InstanceRecord& record : records) {
        array.push_back(jsonForm(record, running));
    }
    with.output << document(array);
}

void showCommand(const Surroundings& with, const std::string& clone, bool json) {
    const InstanceRecord record = findClone(with.registry, clone);
    const RunningApplications running = with.workspace.runningApplications();
    const auto logSize = logSizeOf(record.config);
    if (!json) {
        with.output << description(record, running.contains(record.config.bundleId), logSize);
        return;
    }
    nlohmann::json object = jsonForm(record, running);
    if (logSize) {
        object["logSize"] = *logSize;
    }
    with.output << document(object);
}

void createCommand(const Surroundings& with, const CreateOptions& options, bool json) {
    const WrapperFactory::Request request = requestFrom(options);
    const WrapperFactory factory(options.runner);
    checkCreation(with, request, factory.runnerBinary, options.sharedHome);
    const fs::path wrapper = factory.create(request);
    const std::optional<InstanceRecord> record = with.registry.record(wrapper);
    if (!record) {
        throw CommandError("The clone at " + wrapper.string() + " can’t be read back.");
    }
    if (!json) {
        with.output << shownPath(with, wrapper) << "\n" << std::flush;
    }
    if (options.launch) {
        openWrapper(with, *record);
    }
    if (json) {
        with.output << document(jsonForm(*record, with.workspace.runningApplications()));
    }
}

void openCommand(const Surroundings& with, const std::string& clone, bool json) {
    const InstanceRecord record = findClone(with.registry, clone);
    openWrapper(with, record);
    if (json) {
        with.output << document({{"bundleURL", record.bundleURL.string()}});
    }
}

} // namespace quorvel
