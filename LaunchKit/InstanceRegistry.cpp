#include "LaunchKit/InstanceRegistry.h"

#include "Base/Text.h"
#include "LaunchKit/CloneDeletion.h"
#include "LaunchKit/InstanceRecord.h"
#include "Platform/desktop/UserLocale.h"
#include "Platform/desktop/Workspace.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/Folder.h"
#include "Platform/files/UserPaths.h"

#include <stdexcept>
#include <utility>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

// Puts every record in its place, one cycle after the other: records are large, and so each is
// moved once, and no second list is made.
void arrange(std::vector<InstanceRecord>& records, std::vector<std::size_t> order) {
    for (std::size_t start = 0; start < order.size(); ++start) {
        if (order[start] == start) {
            continue;
        }
        InstanceRecord first = std::move(records[start]);
        std::size_t place = start;
        while (order[place] != start) {
            const std::size_t next = std::exchange(order[place], place);
            records[place] = std::move(records[next]);
            place = next;
        }
        records[place] = std::move(first);
        order[place] = place;
    }
}

void sortByName(std::vector<InstanceRecord>& records) {
    std::vector<std::string_view> names;
    names.reserve(records.size());
    for (const InstanceRecord& record : records) {
        names.push_back(record.config.displayName);
    }
    arrange(records, Text::sortedOrder(names, UserLocale::forOrder()));
}

// Appends the clones of one folder. Each is read where it will lie, since records are large.
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
            !folder->read(name + instanceConfigInBundle, InstanceConfig::maximumFileSize, bytes)) {
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

std::optional<fs::path> InstanceRecord::iconURL() const {
    fs::path icon = bundleURL / "Contents" / "Resources" / "AppIcon.icns";
    return itemExists(icon) ? std::optional(std::move(icon)) : std::nullopt;
}

fs::path instanceConfigFile(const fs::path& bundleURL) {
    return bundleURL.native() + instanceConfigInBundle;
}

std::vector<fs::path> InstanceRegistry::defaultSearchDirs() {
    return {UserPaths::expandTilde("~/Applications")};
}

std::vector<InstanceRecord> InstanceRegistry::list() const {
    std::vector<InstanceRecord> records;
    for (const fs::path& folder : searchDirs) {
        appendClones(withoutTrailingSlashes(folder), records);
    }
    sortByName(records);
    return records;
}

std::optional<InstanceRecord> InstanceRegistry::record(const fs::path& bundleURL) const {
    const fs::path bundle = withoutTrailingSlashes(bundleURL);
    auto config = InstanceConfig::read(bundle.native() + instanceConfigInBundle);
    if (!config) {
        return std::nullopt;
    }
    return InstanceRecord{bundle, std::move(*config)};
}

DeletedData InstanceRegistry::remove(const InstanceRecord& record, bool includingData) const {
    return deleteClone(*this, record, includingData);
}

void InstanceRegistry::update(const InstanceRecord& record,
                              const std::function<void(InstanceConfig&)>& change) const {
    InstanceConfig config = record.config;
    change(config);
    try {
        writeFile(instanceConfigFile(record.bundleURL), config.json());
    } catch (const std::runtime_error&) {
        // The next listing shows what the file holds.
    }
}

void InstanceRegistry::shareUserFolders(const InstanceRecord& record) const {
    const auto shares = [](const std::optional<InstanceRecord>& clone) {
        return clone && clone->config.shareUserFolders;
    };
    // Another program may have changed the clone since it was listed.
    const auto now = this->record(record.bundleURL);
    if (now && !shares(now)) {
        update(*now, [](InstanceConfig& config) { config.shareUserFolders = true; });
    }
    if (!shares(now) && !shares(this->record(record.bundleURL))) {
        throw Error("The clone at " + record.bundleURL.string() +
                    " can’t be changed; it does not share the folders yet.");
    }
}

} // namespace quorvel
