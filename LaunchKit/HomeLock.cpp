#include "LaunchKit/HomeLock.h"

#include "Platform/FileSystem.h"

namespace quorvel {
namespace {

bool meansNoLocks(const std::error_code& code) {
    return code == std::errc::read_only_file_system || code == std::errc::no_lock_available ||
           code == std::errc::not_supported || code == std::errc::operation_not_supported ||
           code == std::errc::function_not_supported;
}

} // namespace

HomeInUse::HomeInUse(const std::string& displayName)
    : std::runtime_error("“" + displayName +
                         "” is still running, or a clone that shares its data folder is") {}

std::optional<FileLock> lockHome(const InstanceConfig& config) {
    const std::string home = config.resolvedHome();
    createDirectories(home);
    try {
        if (std::optional<FileLock> lock = FileLock::tryTake(joinAsText(home, homeLockName))) {
            return lock;
        }
    } catch (const PlatformError& error) {
        if (meansNoLocks(error.code())) {
            return std::nullopt;
        }
        throw;
    }
    throw HomeInUse(config.displayName);
}

bool isHomeInUse(const InstanceConfig& config) {
    const std::string home = config.resolvedHome();
    return home.starts_with('/') && FileLock::isHeld(joinAsText(home, homeLockName));
}

} // namespace quorvel
