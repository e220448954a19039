#pragma once

#include "LaunchKit/DeletedData.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quorvel {

struct InstanceConfig;
struct InstanceRecord;

/// Where a wrapper keeps its configuration, to be appended to its path.
inline constexpr const char* instanceConfigInBundle = "/Contents/Resources/instance.json";

/// The same as a path.
[[nodiscard]] std::filesystem::path instanceConfigFile(const std::filesystem::path& bundleURL);

/// Finds, changes and deletes the clones below a few folders. Holds no other state; any thread.
class InstanceRegistry {
public:
    /// "~/Applications".
    [[nodiscard]] static std::vector<std::filesystem::path> defaultSearchDirs();

    explicit InstanceRegistry(std::vector<std::filesystem::path> dirs = defaultSearchDirs())
        : searchDirs(std::move(dirs)) {}

    std::vector<std::filesystem::path> searchDirs;

    /// The clones, sorted by name as the user's locale does, upper and lower case alike; equal
    /// names stay in the order in which they were found. What can't be read is left out.
    [[nodiscard]] std::vector<InstanceRecord> list() const;

    /// The clone at `bundleURL`, wherever that is.
    [[nodiscard]] std::optional<InstanceRecord>
    record(const std::filesystem::path& bundleURL) const;

    /// Removes the wrapper and, when asked, the data folder; a user's home is never removed. Throws
    /// `PlatformError` when the wrapper can't be removed or something is mounted in what would be,
    /// and `RefusedDeletion` when the data folder is not the clone's alone or another clone is at
    /// the record's place by now; the data is untouched then. A data folder that can't be removed
    /// throws nothing: the result tells.
    DeletedData remove(const InstanceRecord& record, bool includingData) const;

    /// Rewrites the wrapper's configuration after `change`. Failures are silent: list again to see.
    void update(const InstanceRecord& record,
                const std::function<void(InstanceConfig&)>& change) const;

    /// Has the clone share the user's own folders, and leaves what else its configuration holds on
    /// disk by now. Throws `Error` when it still does not share them.
    void shareUserFolders(const InstanceRecord& record) const;
};

} // namespace quorvel
