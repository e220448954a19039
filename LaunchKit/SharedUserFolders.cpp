#include "Platform/files/FileRemoval.h"
#include "Platform/files/PlatformError.h"
#include "Base/PathText.h"
#include "LaunchKit/InstanceLauncher.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/ItemMover.h"
#include "Platform/files/UserPaths.h"

namespace quorvel {
namespace fs = std::filesystem;
namespace {

std::vector<std::string> entries(const fs::path& folder) {
    return directoryEntries(folder).value_or(std::vector<std::string>{});
}

// Each of these steps is worth trying and none is worth stopping for.
template<typename Step>
void attempt(const Step& step) {
    try {
        step();
    } catch (const PlatformError&) {
        // What it was for shows whether it was needed.
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

using Unmoved = InstanceLauncher::UnmovedItem;

// Runs a step for `item`; a failure is told at the end, and nothing stops for it.
template<typename Step>
void attempt(const std::string& item, std::vector<Unmoved>& unmoved, const Step& step) {
    try {
        step();
    } catch (const PlatformError& error) {
        unmoved.push_back({item, error.description()});
    }
}

// Moves what one folder holds into another.
class FolderMove {
public:
    FolderMove(std::string source, std::string destination, InstanceLauncher::Migration& result)
        : source_(std::move(source)),
          destination_(std::move(destination)),
          result_(result) {}

    // The number of entries moved.
    int run(ItemMover& mover) {
        const auto names = directoryEntries(source_);
        if (!names) {
            refuseUnreadable();
            return 0;
        }
        finishEarlier(*names, mover);
        for (const std::string& entry : entries(source_)) {
            const std::string from = joinAsText(source_, entry);
            attempt(from, result_.unmoved, [&] { moveEntry(from, entry, mover); });
        }
        return moved_;
    }

private:
    // Moves that were cut off, so that what they copied does not come twice.
    void finishEarlier(const std::vector<std::string>& names, ItemMover& mover) {
        for (const std::string& name : names) {
            const std::string leftover = joinAsText(source_, name);
            if (ItemMover::isLeftover(name)) {
                attempt(leftover, result_.unmoved, [&] {
                    moved_ += mover.finish(leftover, destination_, uniqueDestination) ? 1 : 0;
                });
            }
        }
    }

    void moveEntry(const std::string& from, const std::string& entry, ItemMover& mover) {
        if (entry == ".DS_Store") {
            removeItem(from);
        } else if (!ItemMover::isLeftover(entry)) {
            mover.move(from, uniqueDestination(joinAsText(destination_, entry)));
            ++moved_;
        }
    }

    // A plain file in its place is no folder that can't be read.
    void refuseUnreadable() {
        const PlatformError error = PlatformError::fromErrno(source_, "read");
        if (error.code() != std::errc::not_a_directory) {
            result_.unmoved.push_back({source_, error.description()});
        }
    }

    std::string source_;
    std::string destination_;
    InstanceLauncher::Migration& result_;
    int moved_ = 0;
};

// A folder that keeps a link from taking its place.
Unmoved unlinked(const std::string& source) {
    const char* reason = entries(source).empty() ? "it can’t be removed" : "it isn’t empty";
    return {source, PlatformError::because(reason, source, "linked").description()};
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

InstanceLauncher::Migration InstanceLauncher::migrateSharedUserFolders(const std::string& home) {
    return migrateSharedUserFolders(home, UserPaths::home());
}

InstanceLauncher::Migration
InstanceLauncher::migrateSharedUserFolders(const std::string& home, const std::string& realHome) {
    Migration result;
    ItemMover mover;
    for (const std::string_view name : sharedUserFolders) {
        const std::string source = joinAsText(home, name);
        const std::string destination = joinAsText(realHome, name);
        // The user's own folder has nothing to be moved into itself.
        if (isSymbolicLink(source) || isSameItem(source, destination)) {
            continue;
        }
        const std::size_t before = result.unmoved.size();
        if (itemExists(source)) {
            attempt([&] { createDirectories(destination); });
            result.moved.emplace(name, FolderMove(source, destination, result).run(mover));
            if (entries(source).empty()) {
                removeEmpty(source);
            }
        }
        linkIfSafe(source, destination);
        if (result.unmoved.size() == before && itemOrLinkExists(source) &&
            !isSymbolicLink(source)) {
            result.unmoved.push_back(unlinked(source));
        }
    }
    return result;
}

} // namespace quorvel
