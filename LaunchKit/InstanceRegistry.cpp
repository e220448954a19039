#include "LaunchKit/InstanceRegistry.h"

#include "Base/BundleName.h"
#include "Base/PathText.h"
#include "LaunchKit/Changes/CloneDeletion.h"
#include "LaunchKit/Changes/ClonesLock.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/NameOrder.h"
#include "LaunchKit/Wrappers/WrapperLayout.h"
#include "Platform/desktop/Workspace.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/FileWriting.h"
#include "Platform/files/Folder.h"

#include <stdexcept>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

// Appends the clones in one folder. Each is read in place, since records are large.
void appendClones(const fs::path& path, std::vector<InstanceRecord>& records) {
    std::optional<Folder> folder = Folder::open(path);
    if (!folder) {
        return;
    }
    const std::vector<std::string> names = folder->entries();
    records.reserve(records.size() + names.size());
    std::string bytes;
    for (const std::string& name : names) {
        if (!isAppBundleName(name) ||
            !folder->read(configOf(name), InstanceConfig::maximumFileSize, bytes)) {
            continue;
        }
        InstanceRecord& record = records.emplace_back();
        try {
            InstanceConfig::decode(bytes, record.config);
            record.bundleURL = joinAsText(path, name);
        } catch (const ConfigError&) {
            records.pop_back();
        }
    }
}

} // namespace

std::vector<fs::path> InstanceRegistry::defaultSearchDirs() {
    return {userApplicationsFolder()};
}

std::vector<InstanceRecord> InstanceRegistry::list() const {
    std::vector<InstanceRecord> records;
    for (const fs::path& folder : searchDirs_) {
        appendClones(withoutTrailingSlashes(folder), records);
    }
    return sortedByName(std::move(records), [](const InstanceRecord& record) -> std::string_view {
        return record.config.displayName;
    });
}

std::optional<InstanceRecord> InstanceRegistry::record(const fs::path& bundleURL) const {
    const fs::path bundle = withoutTrailingSlashes(bundleURL);
    auto config = InstanceConfig::read(configOf(bundle));
    if (!config) {
        return std::nullopt;
    }
    return InstanceRecord{bundle, std::move(*config)};
}

DeletedData InstanceRegistry::remove(const InstanceRecord& record, bool includingData,
                                     const Deferral& later) const {
    return deleteClone(*this, record, includingData, later);
}

void InstanceRegistry::update(const InstanceRecord& record,
                              const std::function<void(InstanceConfig&)>& change) const {
    try {
        const auto lock = lockClones(record.bundleURL.parent_path());
        // Another program may have changed the clone since it was listed.
        if (auto now = this->record(record.bundleURL)) {
            change(now->config);
            writeFile(configOf(now->bundleURL), now->config.json());
        }
    } catch (const std::runtime_error&) {
        // The next listing shows what was saved.
    }
}

void InstanceRegistry::shareUserFolders(const InstanceRecord& record) const {
    const auto shares = [](const std::optional<InstanceRecord>& clone) {
        return clone && clone->config.shareUserFolders;
    };
    if (!shares(this->record(record.bundleURL))) {
        update(record, [](InstanceConfig& config) { config.shareUserFolders = true; });
    }
    if (!shares(this->record(record.bundleURL))) {
        throw Error("The clone at " + record.bundleURL.string() +
                    " couldn’t be changed, so folder sharing is still off.");
    }
}

} // namespace quorvel
