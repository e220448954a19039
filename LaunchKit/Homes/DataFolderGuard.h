#pragma once

#include "Platform/files/ItemRelation.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace quorvel {

class InstanceRegistry;
struct InstanceConfig;
struct InstanceRecord;

/// Knows the folders that must not be deleted as one clone's data: the user's folders, other
/// clones' data and similar ones. Used both to create and to delete clones. Any thread.
class DataFolderGuard {
public:
    /// For the clone at `wrapper`, which need not exist yet. The other clones are those that the
    /// registry lists, and those beside the wrapper.
    DataFolderGuard(const InstanceRegistry& registry, const std::filesystem::path& wrapper);
    DataFolderGuard(const DataFolderGuard&) = delete;
    DataFolderGuard& operator=(const DataFolderGuard&) = delete;
    ~DataFolderGuard();

    /// Returns why the folder is not the clone's alone, to be read after "The data folder …";
    /// `std::nullopt` if it is. `folder` is compared as an item on disk.
    [[nodiscard]] std::optional<std::string> objection(const ComparedItem& folder) const;

    /// Returns whether the folder is the wrapper, which is removed as a whole, or inside it.
    [[nodiscard]] bool isInWrapper(const ComparedItem& folder) const;

private:
    std::filesystem::path wrapper_;
    std::vector<InstanceRecord> others_;
};

/// What a configured data folder is on disk.
struct DataFolder {
    std::filesystem::path path{}; ///< resolved, except a link at its end; empty if `isNone`
    bool isNone = false;          ///< not usable: empty, relative, or with a NUL
    bool isBehindLink = false;    ///< "link/." and the like: not what the plain path names
};

/// Resolves the data folder of a configuration, which need not exist.
[[nodiscard]] DataFolder dataFolderOf(const InstanceConfig& config);

} // namespace quorvel
