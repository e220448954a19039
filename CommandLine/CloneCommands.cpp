#include "CommandLine/CloneCommands.h"

#include "CommandLine/CloneLookup.h"
#include "CommandLine/CloneTexts.h"
#include "LaunchKit/InstanceLauncher.h"
#include "LaunchKit/RequestCheck.h"
#include "Platform/FileSystem.h"
#include "Platform/TerminalText.h"

#include <future>
#include <istream>
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

bool confirmed(const Surroundings& with, const InstanceRecord& record, bool includingData) {
    with.errors << "Delete “" << terminalText(record.config.displayName) << "”";
    if (includingData) {
        with.errors << " and everything in " << terminalText(record.config.resolvedHome());
    }
    with.errors << "? [y/N] " << std::flush;
    std::string answer;
    std::getline(with.input, answer);
    return answer == "y" || answer == "Y" || answer == "yes";
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
    with.output << (json ? document(jsonForm(record, running))
                         : description(record, running.contains(record.config.bundleId)));
}

void createCommand(const Surroundings& with, const CreateOptions& options, bool json) {
    const WrapperFactory::Request request = requestFrom(options);
    const WrapperFactory factory(
        options.runner.empty() ? std::nullopt : std::optional(absolutePath(options.runner)));
    checkRequest(request, factory.runnerBinary);
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

void deleteCommand(const Surroundings& with, const std::string& clone, const DeleteOptions& options,
                   bool json) {
    const InstanceRecord record = findClone(with.registry, clone);
    if (!options.yes && !with.inputIsTerminal) {
        throw UsageError("Deleting needs --yes where nobody can be asked");
    }
    if (!options.yes && !confirmed(with, record, options.includingData)) {
        throw CommandError("Nothing was deleted.");
    }
    const std::string home = record.config.resolvedHome();
    const bool hadData = !home.empty() && itemExists(home);
    with.registry.remove(record, options.includingData);
    const bool deletedData = options.includingData && hadData && !itemExists(home);
    if (json) {
        with.output << document(
            {{"bundleURL", record.bundleURL.string()}, {"deletedData", deletedData}});
    } else if (options.includingData && hadData && !deletedData) {
        with.errors << "The data folder was kept: " << terminalText(home) << "\n";
    }
}

void migrateCommand(const Surroundings& with, const std::string& clone, bool json) {
    const InstanceRecord record = findClone(with.registry, clone);
    const std::map<std::string, int> moved =
        InstanceLauncher::migrateSharedUserFolders(record.config.resolvedHome());
    with.registry.shareUserFolders(record);
    if (json) {
        nlohmann::json counts = nlohmann::json::object();
        for (const auto& [name, count] : moved) {
            counts[name] = count;
        }
        with.output << document({{"moved", counts}});
        return;
    }
    for (const std::string_view name : InstanceLauncher::sharedUserFolders) {
        const auto found = moved.find(std::string(name));
        if (found != moved.end() && found->second > 0) {
            with.output << "Moved " << found->second << " from " << name << "\n";
        }
    }
}

} // namespace quorvel
