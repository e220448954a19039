#pragma once

#include "LaunchKit/Changes/DeletedData.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quorvel {

struct InstanceConfig;
struct InstanceRecord;

/// Finds, changes and deletes the clones in a few folders. Any thread.
class InstanceRegistry {
public:
    /// Returns "~/Applications", expanded.
    [[nodiscard]] static std::vector<std::filesystem::path> defaultSearchDirs();

    explicit InstanceRegistry(std::vector<std::filesystem::path> dirs = defaultSearchDirs())
        : searchDirs_(std::move(dirs)) {}

    /// The folders in which clones are looked for, in this order.
    [[nodiscard]] const std::vector<std::filesystem::path>& searchDirs() const {
        return searchDirs_;
    }

    /// Returns the clones in the order of `sortedByName`. Unreadable ones are left out.
    [[nodiscard]] std::vector<InstanceRecord> list() const;

    /// Returns the clone at `bundleURL`, wherever that is; `std::nullopt` if its configuration
    /// can't be read.
    [[nodiscard]] std::optional<InstanceRecord>
    record(const std::filesystem::path& bundleURL) const;

    /// Runs work that its caller need not wait for. If empty, the work is done before the call
    /// returns. The work never throws.
    using Deferral = std::function<void(std::function<void()> work)>;

    /// Removes the wrapper and, if `includingData`, the data folder; a user's home is never
    /// removed. Throws `PlatformError` if the wrapper can't be removed or something is mounted
    /// inside what would be, and `RefusedDeletion` if the data folder is not the clone's alone or
    /// the record's path now belongs to another clone; the data is untouched then. A data folder
    /// that can't be removed is reported in the result instead. `later` runs the withdrawal from
    /// the menu, which may be slow.
    DeletedData remove(const InstanceRecord& record, bool includingData,
                       const Deferral& later = {}) const;

    /// Applies `change` to the wrapper's current configuration and saves it. Waits for other
    /// changes beside the wrapper. Failures are silent; list again to see the outcome.
    void update(const InstanceRecord& record,
                const std::function<void(InstanceConfig&)>& change) const;

    /// Makes the clone share the user's own folders, and keeps everything else that its
    /// configuration on disk currently holds. Throws `Error` if that couldn't be saved.
    void shareUserFolders(const InstanceRecord& record) const;

private:
    std::vector<std::filesystem::path> searchDirs_;
};

} // namespace quorvel
