#include "LaunchKit/Homes/FolderSharing.h"

#include "LaunchKit/Homes/HomeLock.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/InstanceRegistry.h"
#include "Platform/files/FileSystem.h"

#include <exception>
#include <optional>

namespace quorvel {
namespace {

// A home that doesn't exist has nothing to protect.
std::optional<FileLock> lockExistingHome(const InstanceConfig& config) {
    const std::string home = config.resolvedHome();
    return home.starts_with('/') && itemExists(home) ? lockHome(config) : std::nullopt;
}

SharedUserFolders::Migration migrate(const InstanceConfig& config) {
    const std::optional<FileLock> lock = lockExistingHome(config);
    return SharedUserFolders::migrateSharedUserFolders(config.resolvedHome());
}

} // namespace

FolderSharing moveToSharedFolders(const InstanceRegistry& registry, const InstanceRecord& record) {
    FolderSharing result{migrate(record.config), {}};
    if (!result.migration.unmoved.empty() || record.config.shareUserFolders) {
        return result;
    }
    try {
        registry.shareUserFolders(record);
    } catch (const std::exception& error) {
        result.failure = error.what();
    }
    return result;
}

} // namespace quorvel
