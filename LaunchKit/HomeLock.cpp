#include "LaunchKit/HomeLock.h"

#include "Base/CloneLayout.h"
#include "Base/PathText.h"
#include "LaunchKit/InstanceConfig.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/PlatformError.h"

#include <cerrno>
#include <unistd.h>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

bool meansNoFile(const std::error_code& code) {
    switch (code.value()) {
    case ENOSPC:
    case EDQUOT:
    case EACCES:
    case EPERM:
    case EROFS:
        return true;
    default:
        return false;
    }
}

bool meansNoLocks(const std::error_code& code) {
    return meansNoFile(code) || code == std::errc::no_lock_available ||
           code == std::errc::not_supported || code == std::errc::operation_not_supported ||
           code == std::errc::function_not_supported;
}

// Locks the file or, if none can be made, the folder. A running target may have locked the other
// one.
std::optional<FileLock> lockFileOrFolder(const fs::path& home) {
    const fs::path file = joinAsText(home, homeLockName);
    fs::path other = home;
    std::optional<FileLock> lock;
    try {
        lock = FileLock::tryTake(file);
    } catch (const PlatformError& error) {
        if (!meansNoFile(error.code())) {
            throw;
        }
        lock = FileLock::tryTakeFolder(home);
        other = file;
    }
    if (lock && FileLock::isHeld(other)) {
        lock.reset();
    }
    return lock;
}

} // namespace

HomeInUse::HomeInUse(const std::string& displayName)
    : Error("“" + displayName +
            "” is still running, or a clone that shares its data folder is, or a "
            "program that it started") {}

std::optional<FileLock> lockHome(const InstanceConfig& config) {
    const std::string home = config.resolvedHome();
    createDirectories(home);
    try {
        if (std::optional<FileLock> lock = lockFileOrFolder(home)) {
            // It is in use, so it is some clone's.
            (void)::unlink(joinAsText(home, copiedMarkName).c_str());
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

std::optional<PendingHomeLock> PendingHomeLock::of(const InstanceConfig& config) {
    const fs::path home = config.resolvedHome();
    const fs::path file = joinAsText(home, homeLockName);
    try {
        return PendingHomeLock(PendingLock::onFile(file), home);
    } catch (const PlatformError& error) {
        if (!meansNoFile(error.code())) {
            return std::nullopt;
        }
    }
    try {
        return PendingHomeLock(PendingLock::onFolder(home), file);
    } catch (const PlatformError&) {
        return std::nullopt;
    }
}

bool PendingHomeLock::tryTake() noexcept {
    try {
        if (!lock_.tryTake()) {
            return false;
        }
    } catch (const std::exception&) {
        return false;
    }
    if (FileLock::isHeld(other_)) {
        lock_.release();
        return false;
    }
    return true;
}

bool isHomeInUse(const InstanceConfig& config) {
    const std::string home = config.resolvedHome();
    return home.starts_with('/') &&
           (FileLock::isHeld(home) || FileLock::isHeld(joinAsText(home, homeLockName)));
}

void requireUnusedHome(const InstanceConfig& config) {
    if (isHomeInUse(config)) {
        throw HomeInUse(config.displayName);
    }
}

} // namespace quorvel
