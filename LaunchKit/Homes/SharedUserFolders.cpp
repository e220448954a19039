#include "LaunchKit/Homes/SharedUserFolders.h"

#include "Base/PathText.h"
#include "Platform/copying/ItemMover.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/PlatformError.h"
#include "Platform/homes/UserFolders.h"
#include "Platform/homes/UserPaths.h"
#include "Platform/removal/FileRemoval.h"

namespace quorvel {
namespace fs = std::filesystem;
namespace {

std::vector<std::string> entries(const fs::path& folder) {
    return directoryEntries(folder).value_or(std::vector<std::string>{});
}

// For steps whose failure doesn't matter to the caller.
template<typename Step>
void ignoringErrors(const Step& step) {
    try {
        step();
    } catch (const PlatformError&) {
        // The following steps show whether it was needed.
    }
}

void removeEmpty(const fs::path& item) {
    std::error_code ignored;
    // Never recursively: a folder that only looks empty because it can't be listed is kept.
    fs::remove(item, ignored);
}

std::string uniqueDestination(const std::string& path) {
    if (!itemExists(path)) {
        return path;
    }
    const std::size_t slash = path.rfind('/');
    const std::string folder = path.substr(0, slash + 1);
    const fs::path name = path.substr(slash + 1);
    // A final dot doesn't begin an extension; it belongs to the name.
    const bool bare = name.extension() == ".";
    const std::string stem = folder + (bare ? name : name.stem()).string() + " (";
    const std::string extension = bare ? "" : name.extension().string();
    for (int number = 1;; ++number) {
        std::string candidate = stem;
        candidate.append(std::to_string(number)).append(")").append(extension);
        if (!itemExists(candidate)) {
            return candidate;
        }
    }
}

using UnmovedItem = SharedUserFolders::UnmovedItem;

// Runs a step for `item`. A failure is recorded in `unmoved` and stops nothing.
template<typename Step>
void reportingErrors(const std::string& item, std::vector<UnmovedItem>& unmoved, const Step& step) {
    try {
        step();
    } catch (const PlatformError& error) {
        unmoved.push_back({item, error.description()});
    }
}

// Moves the contents of one folder to another.
class FolderMove {
public:
    FolderMove(std::string source, std::string destination, SharedUserFolders::Migration& result)
        : source_(std::move(source)),
          destination_(std::move(destination)),
          result_(result) {}

    // Returns the number of entries moved.
    int run(ItemMover& mover) {
        const auto names = directoryEntries(source_);
        if (!names) {
            refuseUnreadable();
            return 0;
        }
        finishEarlier(*names, mover);
        for (const std::string& entry : entries(source_)) {
            const std::string from = joinAsText(source_, entry);
            reportingErrors(from, result_.unmoved, [&] { moveEntry(from, entry, mover); });
        }
        return moved_;
    }

private:
    // Completes interrupted moves, so that what they copied is not copied again.
    void finishEarlier(const std::vector<std::string>& names, ItemMover& mover) {
        for (const std::string& name : names) {
            const std::string leftover = joinAsText(source_, name);
            if (ItemMover::isLeftover(name)) {
                reportingErrors(leftover, result_.unmoved, [&] {
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

    // A plain file there is not an unreadable folder.
    void refuseUnreadable() {
        const PlatformError error = PlatformError::fromErrno(source_, "read");
        if (error.code() != std::errc::not_a_directory) {
            result_.unmoved.push_back({source_, error.description()});
        }
    }

    std::string source_;
    std::string destination_;
    SharedUserFolders::Migration& result_;
    int moved_ = 0;
};

// A folder that couldn't be replaced by a link.
UnmovedItem unlinked(const std::string& source) {
    const char* reason = entries(source).empty() ? "it can’t be removed" : "it isn’t empty";
    return {source, PlatformError::because(reason, source, "linked").description()};
}

} // namespace

void SharedUserFolders::linkIfSafe(const std::string& link, const std::string& target) {
    // If `home` is the user's own, an empty folder would be replaced by a link to itself.
    if (hasNul(link) || !itemExists(target) || isSameItem(link, target)) {
        return;
    }
    ignoringErrors([&] { createDirectories(fs::path(link).parent_path()); });
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

void SharedUserFolders::ensureSharedUserFolders(const std::string& home) {
    const std::string realHome = UserPaths::home();
    for (const std::string_view name : sharedUserFolders) {
        linkIfSafe(joinAsText(home, name), userFolder(name, realHome));
    }
}

bool SharedUserFolders::needsSharedFolderMigration(const std::string& home) {
    for (const std::string_view name : sharedUserFolders) {
        const fs::path item = joinAsText(home, name);
        if (itemOrLinkExists(item) && !isSymbolicLink(item)) {
            return true;
        }
    }
    return false;
}

SharedUserFolders::Migration SharedUserFolders::migrateSharedUserFolders(const std::string& home) {
    return migrateSharedUserFolders(home, UserPaths::home());
}

SharedUserFolders::Migration
SharedUserFolders::migrateSharedUserFolders(const std::string& home, const std::string& realHome) {
    Migration result;
    ItemMover mover;
    for (const std::string_view name : sharedUserFolders) {
        const std::string source = joinAsText(home, name);
        const std::string destination = userFolder(name, realHome);
        // The user's own folder can't be moved into itself.
        if (isSymbolicLink(source) || isSameItem(source, destination)) {
            continue;
        }
        const std::size_t before = result.unmoved.size();
        if (itemExists(source)) {
            ignoringErrors([&] { createDirectories(destination); });
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
