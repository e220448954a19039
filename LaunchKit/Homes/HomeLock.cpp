#include "LaunchKit/Homes/HomeLock.h"

#include "Base/CloneLayout.h"
#include "Base/PathText.h"
#include "LaunchKit/InstanceConfig.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/PlatformError.h"
#include "Platform/homes/IsolatedEnvironment.h"

#include <cerrno>
#include <unistd.h>
#include <utility>

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

// Opens or locks the file or, if none can be made, the folder. The second result is the other one,
// which a running target may have locked.
template<typename OnFile, typename OnFolder>
auto fileOrFolder(const fs::path& home, OnFile onFile, OnFolder onFolder) {
    const fs::path file = joinAsText(home, homeLockName);
    try {
        return std::pair(onFile(file), home);
    } catch (const PlatformError& error) {
        if (!meansNoFile(error.code())) {
            throw;
        }
    }
    return std::pair(onFolder(home), file);
}

std::optional<FileLock> lockFileOrFolder(const fs::path& home) {
    auto [lock, other] = fileOrFolder(home, FileLock::tryTake, FileLock::tryTakeFolder);
    if (lock && FileLock::isHeld(other)) {
        lock.reset();
    }
    return std::move(lock);
}

} // namespace

HomeInUse::HomeInUse(const std::string& displayName)
    : Error("“" + displayName +
            "” is still running, or a clone that shares its data folder is, or a "
            "program that it started") {}

void keepCopiedData(const InstanceConfig& config) {
    const std::string home = config.resolvedHome();
    if (home.starts_with('/')) {
        (void)::unlink(joinAsText(home, copiedMarkName).c_str());
    }
}

std::optional<FileLock> lockHome(const InstanceConfig& config) {
    const std::string home = config.resolvedHome();
    createDirectories(home);
    try {
        if (std::optional<FileLock> lock = lockFileOrFolder(home)) {
            keepCopiedData(config);
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
    try {
        auto [lock, other] =
            fileOrFolder(config.resolvedHome(), PendingLock::onFile, PendingLock::onFolder);
        return PendingHomeLock(std::move(lock), std::move(other));
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

void removeUnusedTemporaryFolder(const InstanceConfig& config) {
    const std::string home = config.resolvedHome();
    if (config.kind == ShortcutKind::app && home.starts_with('/') && !isHomeInUse(config)) {
        removeTemporaryFolder(home, currentEnvironment());
    }
}

} // namespace quorvel
