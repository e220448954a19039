#include "LaunchKit/Homes/DataFolderGuard.h"

#include "Base/PathText.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/InstanceRegistry.h"
#include "LaunchKit/WrapperFactory.h"
#include "LaunchKit/Wrappers/WrapperLayout.h"
#include "Platform/files/FileSystem.h"
#include "Platform/homes/UserFolders.h"
#include "Platform/homes/UserPaths.h"

#include <algorithm>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

// Returns the other clones in the registry's folders and in the wrapper's.
std::vector<InstanceRecord> clonesBeside(const InstanceRegistry& registry,
                                         const fs::path& wrapper) {
    std::vector<fs::path> folders = registry.searchDirs();
    const fs::path beside = wrapper.parent_path();
    const auto isThere = [&](const fs::path& folder) { return isSameItem(folder, beside); };
    if (std::none_of(folders.begin(), folders.end(), isThere)) {
        folders.push_back(beside);
    }
    std::vector<InstanceRecord> clones = InstanceRegistry(std::move(folders)).list();
    const auto itself = identityOf(wrapper);
    std::erase_if(clones, [&](const InstanceRecord& clone) {
        return clone.bundleURL == wrapper || (itself && identityOf(clone.bundleURL) == itself);
    });
    return clones;
}

std::string quoted(const std::string& name) {
    return "“" + name + "”";
}

// Returns "is WHAT" or "contains WHAT", if either is true.
std::optional<std::string> isOrContains(const ComparedItem& folder, const fs::path& target,
                                        const std::string& what) {
    switch (folder.relationTo(target)) {
    case Relation::same:
        return "is " + what;
    case Relation::ancestor:
        return "contains " + what;
    case Relation::unrelated:
        break;
    }
    return std::nullopt;
}

std::vector<fs::path> foldersToSpare() {
    std::vector<fs::path> folders = userFolders();
    folders.push_back(userApplicationsFolder());
    folders.push_back(
        withoutTrailingSlashes(UserPaths::expandTilde(WrapperFactory::defaultInstanceHome(""))));
    return folders;
}

// Returns whether the folder is or contains a home of the user's or one of the folders to spare:
// then it is not one clone's alone, even if a configuration names it.
bool holdsUsersOwn(const ComparedItem& folder) {
    std::vector<fs::path> owned = foldersToSpare();
    for (const std::string& home : UserPaths::allHomes()) {
        owned.emplace_back(home);
    }
    return std::any_of(owned.begin(), owned.end(), [&](const fs::path& own) {
        return folder.relationTo(own) != Relation::unrelated;
    });
}

bool isInAHomeOfTheUsers(const ComparedItem& folder) {
    const std::vector<std::string> homes = UserPaths::allHomes();
    return std::any_of(homes.begin(), homes.end(), [&](const std::string& home) {
        return ComparedItem(home).relationTo(folder.path()) == Relation::ancestor;
    });
}

// Asking the user database may be slow, and most data folders are in the user's own home.
std::optional<std::string> ownerOfHomeAround(const ComparedItem& folder) {
    if (isInAHomeOfTheUsers(folder)) {
        return std::nullopt;
    }
    for (const UserPaths::OtherHome& other : UserPaths::otherUsersHomes()) {
        if (ComparedItem(other.home).relationTo(folder.path()) != Relation::unrelated ||
            folder.relationTo(other.home) != Relation::unrelated) {
            return other.user;
        }
    }
    return std::nullopt;
}

} // namespace

DataFolderGuard::DataFolderGuard(const InstanceRegistry& registry, const fs::path& wrapper)
    : wrapper_(withoutTrailingSlashes(wrapper)),
      others_(clonesBeside(registry, wrapper_)) {}

bool DataFolderGuard::isInWrapper(const ComparedItem& folder) const {
    return ComparedItem(wrapper_).relationTo(folder.path()) != Relation::unrelated;
}

DataFolderGuard::~DataFolderGuard() = default;

std::optional<std::string> DataFolderGuard::objection(const ComparedItem& folder) const {
    for (const std::string& home : UserPaths::allHomes()) {
        if (auto reason = isOrContains(folder, home, "your home")) {
            return reason;
        }
    }
    for (const fs::path& spared : foldersToSpare()) {
        if (auto reason =
                isOrContains(folder, spared, "your folder " + quoted(spared.filename().string()))) {
            return reason;
        }
    }
    for (const InstanceRecord& other : others_) {
        const DataFolder data = dataFolderOf(other.config);
        const std::string what = "the data folder of " + quoted(other.config.displayName);
        if (data.isNone) {
            continue;
        }
        if (auto reason = isOrContains(folder, data.path, what)) {
            return reason;
        }
        const ComparedItem others(data.path);
        if (others.relationTo(folder.path()) == Relation::ancestor && !holdsUsersOwn(others)) {
            return "is inside " + what;
        }
    }
    if (const auto owner = ownerOfHomeAround(folder)) {
        return "is, contains or is inside the home of the user " + quoted(*owner);
    }
    return isOrContains(folder, wrapper_, "the clone itself");
}

DataFolder dataFolderOf(const InstanceConfig& config) {
    const std::string home = config.resolvedHome();
    if (!home.starts_with('/') || hasNul(home)) {
        return {.isNone = true};
    }
    const fs::path written = withoutTrailingSlashes(home);
    const fs::path plain = withoutTrailingSlashes(written.lexically_normal());
    if (plain != written && identityOf(plain) != identityOf(written)) {
        // "." and ".." after a link are resolved in its target; the normalized path names another
        // item.
        return {.path = written, .isBehindLink = true};
    }
    std::error_code code;
    const fs::path above = fs::weakly_canonical(plain.parent_path(), code);
    return {.path = code || !plain.has_filename() ? plain : above / plain.filename()};
}

} // namespace quorvel
