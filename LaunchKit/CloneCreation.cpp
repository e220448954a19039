#include "LaunchKit/CloneCreation.h"

#include "Platform/files/FileLock.h"
#include "Platform/files/PlatformError.h"

#include <chrono>
#include <optional>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

// Returns std::nullopt where the folder can't be locked: not every file system has locks.
std::optional<FileLock> lockForCreation(const fs::path& folder) {
    constexpr std::chrono::seconds patience{30};
    std::error_code ignored; // whatever is wrong, writing the wrapper reports it
    fs::create_directories(folder, ignored);
    try {
        if (std::optional<FileLock> lock = FileLock::takeFolder(folder, patience)) {
            return lock;
        }
    } catch (const PlatformError&) {
        return std::nullopt;
    }
    throw InvalidRequest("Another clone is being made in " + folder.string() +
                         "; try again once that is done.");
}

} // namespace

fs::path createClone(const WrapperFactory& factory, const WrapperFactory::Request& request,
                     const RequestPermissions& permissions, const WrapperFactory::Warning& warn) {
    validateRequest(request, factory.runnerBinary, permissions);
    std::optional<FileLock> lock;
    const auto beforeWriting = [&](const fs::path& wrapper) {
        lock = lockForCreation(wrapper.parent_path());
        // Another creation may have been faster since the request was validated.
        requireReplaceable(wrapper, permissions);
    };
    return factory.create(request, beforeWriting, warn);
}

} // namespace quorvel
