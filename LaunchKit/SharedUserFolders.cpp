#include "LaunchKit/InstanceLauncher.h"
#include "Platform/FileSystem.h"
#include "Platform/UserPaths.h"

namespace quorvel {
namespace fs = std::filesystem;
namespace {

std::vector<std::string> entries(const fs::path& folder) {
    return directoryEntries(folder).value_or(std::vector<std::string>{});
}

// Each of these steps is worth trying and none is worth stopping for.
template<typename Step>
bool attempt(const Step& step) {
    try {
        step();
        return true;
    } catch (const PlatformError&) {
        return false;
    }
}

void removeEmpty(const fs::path& item) {
    std::error_code ignored;
    // Never recursive: a folder that only looks empty, because it can't be listed, stays.
    fs::remove(item, ignored);
}

std::string uniqueDestination(const std::string& path) {
    if (!itemExists(path)) {
        return path;
    }
    const std::size_t slash = path.rfind('/');
    const std::string folder = path.substr(0, slash + 1);
    const fs::path name = path.substr(slash + 1);
    // A dot at the end sets off no extension; it belongs to the name.
    const bool bare = name.extension() == ".";
    const std::string stem = folder + (bare ? name : name.stem()).string() + " (";
    const std::string extension = bare ? "" : name.extension().string();
    for (int number = 1;; ++number) {
        std::string candidate = stem + std::to_string(number) + ")" + extension;
        if (!itemExists(candidate)) {
            return candidate;
        }
    }
}

int moveEntries(const std::string& source, const std::string& destination) {
    int moved = 0;
    for (const std::string& entry : entries(source)) {
        const std::string from = source + "/" + entry;
        if (entry == ".DS_Store") {
            attempt([&] { removeItem(from); });
        } else if (attempt([&] { moveItem(from, uniqueDestination(destination + "/" + entry)); })) {
            ++moved;
        }
    }
    return moved;
}

} // namespace

void InstanceLauncher::linkIfSafe(const std::string& link, const std::string& target) {
    // A home that is the user's own would otherwise lose an empty folder to a link to itself.
    if (hasNul(link) || !itemExists(target) || isSameItem(link, target)) {
        return;
    }
    attempt([&] { createDirectories(fs::path(link).parent_path()); });
    if (isSymbolicLink(link)) {
        return;
    }
    if (itemExists(link)) {
        if (!entries(link).empty()) {
            return;
        }
        removeEmpty(link);
    }
    std::error_code ignored;
    fs::create_symlink(target, link, ignored);
}

void InstanceLauncher::ensureSharedUserFolders(const std::string& home) {
    const std::string realHome = UserPaths::home();
    for (const std::string_view name : sharedUserFolders) {
        linkIfSafe(joinAsText(home, name), joinAsText(realHome, name));
    }
}

bool InstanceLauncher::needsSharedFolderMigration(const std::string& home) {
    for (const std::string_view name : sharedUserFolders) {
        const fs::path item = joinAsText(home, name);
        if (itemOrLinkExists(item) && !isSymbolicLink(item)) {
            return true;
        }
    }
    return false;
}

std::map<std::string, int> InstanceLauncher::migrateSharedUserFolders(const std::string& home) {
    return migrateSharedUserFolders(home, UserPaths::home());
}

std::map<std::string, int> InstanceLauncher::migrateSharedUserFolders(const std::string& home,
                                                                      const std::string& realHome) {
    std::map<std::string, int> moved;
    for (const std::string_view name : sharedUserFolders) {
        const std::string source = joinAsText(home, name);
        const std::string destination = joinAsText(realHome, name);
        // The user's own folder has nothing to be moved into itself.
        if (isSymbolicLink(source) || isSameItem(source, destination)) {
            continue;
        }
        if (itemExists(source)) {
            attempt([&] { createDirectories(destination); });
            moved.emplace(name, moveEntries(source, destination));
            if (entries(source).empty()) {
                removeEmpty(source);
            }
        }
        linkIfSafe(source, destination);
    }
    return moved;
}

} // namespace quorvel
