#include "Platform/files/ItemIdentity.h"

#include "Base/PathText.h"
#include "Platform/files/FileSystem.h"

#include <algorithm>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

// Without links, "." and ".."; what does not exist stays as it is written.
fs::path resolvedPath(const fs::path& path) {
    std::error_code code;
    fs::path resolved = fs::weakly_canonical(path, code);
    return withoutTrailingSlashes(code ? path : resolved);
}

} // namespace

ItemIdentity identityIn(const struct stat& status) {
    return {status.st_dev, status.st_ino};
}

std::optional<ItemIdentity> identityOfItself(const fs::path& path) {
    struct stat status {};
    return !hasNul(path) && ::lstat(path.c_str(), &status) == 0 ? std::optional(identityIn(status))
                                                                : std::nullopt;
}

std::optional<ItemIdentity> identityBehind(const fs::path& path) {
    struct stat status {};
    return !hasNul(path) && ::stat(path.c_str(), &status) == 0 ? std::optional(identityIn(status))
                                                               : std::nullopt;
}

Place::Place(fs::path path) : path_(std::move(path)) {
    for (const auto& identity : {identityOfItself(path_), identityBehind(path_)}) {
        if (identity) {
            identities_.push_back(*identity);
        }
    }
    if (identities_.empty()) {
        resolved_ = resolvedPath(path_);
    }
}

Place::Place(fs::path path, ItemIdentity identity)
    : path_(std::move(path)),
      identities_{identity} {}

bool Place::isAt(const fs::path& path) const {
    if (identities_.empty()) {
        return path == resolved_;
    }
    const auto has = [&](const std::optional<ItemIdentity>& identity) {
        return identity &&
               std::find(identities_.begin(), identities_.end(), *identity) != identities_.end();
    };
    return has(identityOfItself(path)) || has(identityBehind(path));
}

bool Place::isOnTheWayTo(const fs::path& folder) const {
    const auto known = known_.find(folder.native());
    if (known != known_.end()) {
        return known->second;
    }
    const fs::path above = folder.parent_path();
    const bool found = isAt(folder) || (above != folder && isOnTheWayTo(above));
    known_.emplace(folder.native(), found);
    return found;
}

Standing Place::along(const fs::path& target) const {
    if (isAt(target)) {
        return Standing::same;
    }
    const fs::path above = target.parent_path();
    return above != target && isOnTheWayTo(above) ? Standing::above : Standing::apart;
}

Standing Place::towards(const fs::path& target) const {
    const fs::path plain = withoutTrailingSlashes(target);
    if (hasNul(plain) || plain.empty()) {
        return Standing::apart;
    }
    if (const Standing standing = along(plain); standing != Standing::apart) {
        return standing;
    }
    const fs::path name = plain.filename();
    const bool plainName = name != "." && name != ".." && plain.has_parent_path();
    if (!plainName || isSymbolicLink(plain)) {
        return along(resolvedPath(plain));
    }
    // Thousands of targets lie in a few folders.
    const fs::path folder = plain.parent_path();
    const auto known = resolvedFolders_.try_emplace(folder.native(), fs::path()).first;
    if (known->second.empty()) {
        known->second = resolvedPath(folder);
    }
    return along(known->second / name);
}

} // namespace quorvel
