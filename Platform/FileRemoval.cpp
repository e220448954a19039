#include "Platform/FileSystem.h"
#include "Platform/UserPaths.h"

namespace quorvel {
namespace fs = std::filesystem;

namespace {

// Compared as items on disk: no spelling of the path can hide what it leads to.
bool isOnTheWayTo(const fs::path& home, const fs::path& path) {
    for (fs::path ancestor = home;; ancestor = ancestor.parent_path()) {
        if (isSameItem(path, ancestor)) {
            return true;
        }
        if (ancestor == ancestor.parent_path()) {
            return false;
        }
    }
}

} // namespace

bool holdsUserHome(const fs::path& path) {
    for (const std::string& home : UserPaths::allHomes()) {
        std::error_code code;
        const fs::path resolved = fs::weakly_canonical(home, code);
        if (isOnTheWayTo(home, path) || (!code && isOnTheWayTo(resolved, path))) {
            return true;
        }
    }
    return false;
}

void removeItem(const fs::path& path) {
    if (hasNul(path)) {
        throw PlatformError(std::make_error_code(std::errc::invalid_argument), path, "removed");
    }
    if (holdsUserHome(path)) {
        throw PlatformError(std::make_error_code(std::errc::operation_not_permitted), path,
                            "removed");
    }
    // With a slash at its end, a link's path would mean the folder that it points to.
    const fs::path item = withoutTrailingSlashes(path);
    std::error_code code;
    const auto removed = fs::remove_all(item, code);
    if (!code && removed == 0) {
        code = std::make_error_code(std::errc::no_such_file_or_directory);
    }
    if (code) {
        throw PlatformError(code, item, "removed");
    }
}

} // namespace quorvel
