#include "LaunchKit/InstanceRegistry.h"

#include "Platform/FileSystem.h"
#include "Platform/Text.h"
#include "Platform/UserPaths.h"

#include <algorithm>
#include <numeric>
#include <stdexcept>
#include <utility>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

constexpr const char* configInBundle = "/Contents/Resources/instance.json";

bool isAppName(const std::string& name) {
    return fs::path(name).extension() == ".app";
}

// Names are turned into keys once: comparing them anew in every step of a sort would cost more than
// reading the files.
void sortByName(std::vector<InstanceRecord>& records) {
    std::vector<std::string> keys;
    keys.reserve(records.size());
    for (const InstanceRecord& record : records) {
        keys.push_back(Text::collationKey(record.config.displayName));
    }
    std::vector<std::size_t> order(records.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return keys[a] < keys[b]; });
    // Put in place one cycle after the other; a second list of records would double the memory.
    for (std::size_t start = 0; start < order.size(); ++start) {
        std::size_t place = start;
        while (order[place] != start) {
            const std::size_t next = std::exchange(order[place], place);
            std::swap(records[place], records[next]);
            place = next;
        }
        order[place] = place;
    }
}

void removeData(const InstanceConfig& config) {
    const std::string home = config.resolvedHome();
    // A relative path would mean another folder than it meant to the clone, which ran elsewhere.
    if (!home.starts_with('/') || home == UserPaths::home() || !itemExists(home)) {
        return;
    }
    try {
        removeItem(home);
    } catch (const PlatformError&) {
        // The clone itself is gone, which is what was asked for; its data may be in use.
    }
}

} // namespace

std::optional<fs::path> InstanceRecord::iconURL() const {
    fs::path icon = bundleURL / "Contents" / "Resources" / "AppIcon.icns";
    return itemExists(icon) ? std::optional(std::move(icon)) : std::nullopt;
}

fs::path instanceConfigFile(const fs::path& bundleURL) {
    return bundleURL.native() + configInBundle;
}

std::vector<fs::path> InstanceRegistry::defaultSearchDirs() {
    return {UserPaths::expandTilde("~/Applications")};
}

std::vector<InstanceRecord> InstanceRegistry::list() const {
    std::vector<InstanceRecord> records;
    for (const fs::path& folder : searchDirs) {
        const auto names = directoryEntries(folder).value_or(std::vector<std::string>{});
        records.reserve(records.size() + names.size());
        for (const std::string& name : names) {
            if (!isAppName(name)) {
                continue;
            }
            if (auto found = record(joinAsText(folder, name))) {
                records.push_back(std::move(*found));
            }
        }
    }
    sortByName(records);
    return records;
}

std::optional<InstanceRecord> InstanceRegistry::record(const fs::path& bundleURL) const {
    auto config = InstanceConfig::read(bundleURL.native() + configInBundle);
    if (!config) {
        return std::nullopt;
    }
    return InstanceRecord{bundleURL, std::move(*config)};
}

void InstanceRegistry::remove(const InstanceRecord& record, bool includingData) const {
    if (itemOrLinkExists(withoutTrailingSlashes(record.bundleURL))) {
        removeItem(record.bundleURL);
    }
    if (includingData) {
        removeData(record.config);
    }
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
        throw std::runtime_error("The clone at " + record.bundleURL.string() +
                                 " can’t be changed; it does not share the folders yet.");
    }
}

} // namespace quorvel
