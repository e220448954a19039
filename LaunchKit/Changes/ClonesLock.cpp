#include "LaunchKit/Changes/ClonesLock.h"

#include "LaunchKit/Changes/ChangeRecovery.h"
#include "LaunchKit/Changes/RequestCheck.h"
#include "Platform/files/PlatformError.h"

#include <chrono>

namespace quorvel {

std::optional<FileLock> lockTidyClones(const std::filesystem::path& folder) {
    constexpr std::chrono::seconds patience{30};
    try {
        if (std::optional<FileLock> lock = FileLock::takeFolder(folder, patience)) {
            return lock;
        }
    } catch (const PlatformError&) {
        return std::nullopt;
    }
    throw InvalidRequest("Another clone is being made or changed in " + folder.string() +
                         "; try again once that is done.");
}

std::optional<FileLock> lockClones(const std::filesystem::path& folder) {
    std::optional<FileLock> lock = lockTidyClones(folder);
    finishInterruptedChanges(folder);
    return lock;
}

} // namespace quorvel
