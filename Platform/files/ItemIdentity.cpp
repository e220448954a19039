#include "Platform/files/ItemIdentity.h"

#include "Base/PathText.h"

namespace quorvel {
namespace fs = std::filesystem;

ItemIdentity identityOf(const struct stat& status) {
    return {status.st_dev, status.st_ino};
}

std::optional<ItemIdentity> identityOf(const fs::path& path) {
    struct stat status {};
    return !hasNul(path) && ::lstat(path.c_str(), &status) == 0 ? std::optional(identityOf(status))
                                                                : std::nullopt;
}

std::optional<ItemIdentity> identityOfTarget(const fs::path& path) {
    struct stat status {};
    return !hasNul(path) && ::stat(path.c_str(), &status) == 0 ? std::optional(identityOf(status))
                                                               : std::nullopt;
}

} // namespace quorvel
