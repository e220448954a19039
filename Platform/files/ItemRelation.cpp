#include "Platform/files/ItemRelation.h"

#include "Base/PathText.h"
#include "Platform/files/FileSystem.h"

#include <algorithm>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

// Resolves links, "." and ".." as far as the path exists.
fs::path withLinksResolved(const fs::path& path) {
    std::error_code code;
    fs::path resolved = fs::weakly_canonical(path, code);
    return withoutTrailingSlashes(code ? path : resolved);
}

} // namespace

ComparedItem::ComparedItem(fs::path path) : path_(std::move(path)) {
    for (const auto& identity : {identityOf(path_), identityOfTarget(path_)}) {
        if (identity) {
            identities_.push_back(*identity);
        }
    }
    if (identities_.empty()) {
        resolved_ = withLinksResolved(path_);
    }
}

ComparedItem::ComparedItem(fs::path path, ItemIdentity identity)
    : path_(std::move(path)),
      identities_{identity} {}

bool ComparedItem::isAt(const fs::path& path) const {
    if (identities_.empty()) {
        return path == resolved_;
    }
    const auto has = [&](const std::optional<ItemIdentity>& identity) {
        return identity &&
               std::find(identities_.begin(), identities_.end(), *identity) != identities_.end();
    };
    return has(identityOf(path)) || has(identityOfTarget(path));
}

bool ComparedItem::isAtOrAbove(const fs::path& folder) const {
    const auto known = known_.find(folder.native());
    if (known != known_.end()) {
        return known->second;
    }
    const fs::path above = folder.parent_path();
    const bool found = isAt(folder) || (above != folder && isAtOrAbove(above));
    known_.emplace(folder.native(), found);
    return found;
}

Relation ComparedItem::relationAlong(const fs::path& target) const {
    if (isAt(target)) {
        return Relation::same;
    }
    const fs::path above = target.parent_path();
    return above != target && isAtOrAbove(above) ? Relation::ancestor : Relation::unrelated;
}

Relation ComparedItem::relationTo(const fs::path& target) const {
    const fs::path plain = withoutTrailingSlashes(target);
    if (hasNul(plain) || plain.empty()) {
        return Relation::unrelated;
    }
    if (const Relation relation = relationAlong(plain); relation != Relation::unrelated) {
        return relation;
    }
    const fs::path name = plain.filename();
    const bool plainName = name != "." && name != ".." && plain.has_parent_path();
    if (!plainName || isSymbolicLink(plain)) {
        return relationAlong(withLinksResolved(plain));
    }
    // Cached: thousands of targets are in a few folders.
    const fs::path folder = plain.parent_path();
    const auto known = resolvedFolders_.try_emplace(folder.native(), fs::path()).first;
    if (known->second.empty()) {
        known->second = withLinksResolved(folder);
    }
    return relationAlong(known->second / name);
}

} // namespace quorvel
