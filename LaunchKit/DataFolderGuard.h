#pragma once

#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/InstanceRegistry.h"
#include "Platform/files/ItemIdentity.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace quorvel {

/// Knows the folders that are not one clone's own to delete: the user's folders, other clones' data
/// and the like. Creating and deleting clones both ask it. Any thread.
class DataFolderGuard {
public:
    /// For the clone at `wrapper`, which need not exist yet. The other clones are those that the
    /// registry lists, and those beside the wrapper.
    DataFolderGuard(const InstanceRegistry& registry, std::filesystem::path wrapper);

    /// Why the folder is not the clone's alone, to be read after "The data folder …"; nothing when
    /// it is. `folder` is compared as an item on disk.
    [[nodiscard]] std::optional<std::string> objection(const Place& folder) const;

    /// Whether the folder is or lies in the wrapper, which is removed as a whole.
    [[nodiscard]] bool isInWrapper(const Place& folder) const;

private:
    std::filesystem::path wrapper_;
    std::vector<InstanceRecord> others_;
};

/// What a configured data folder comes to on disk.
struct DataFolder {
    std::filesystem::path path{}; ///< resolved, but for a link at its end; empty when `isNone`
    bool isNone = false;          ///< nothing that can be meant: an empty or relative path
    bool isBehindLink = false;    ///< "link/." and the like: not what the plain path names
};

/// Resolves the data folder of a configuration. Nothing need be there.
[[nodiscard]] DataFolder dataFolderOf(const InstanceConfig& config);

} // namespace quorvel
