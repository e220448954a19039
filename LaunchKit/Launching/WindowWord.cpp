#include "LaunchKit/Launching/WindowWord.h"

#include "Base/PathText.h"
#include "Base/StableHash.h"
#include "Platform/files/ResolvedPath.h"

#include <utility>

namespace quorvel {
namespace fs = std::filesystem;

std::string cloneIdentity(const fs::path& wrapper) {
    const fs::path path = withoutTrailingSlashes(wrapper);
    if (auto resolved = resolvedPath(path)) {
        return std::move(*resolved);
    }
    // A wrapper that is gone was where its folder is.
    const auto folder = resolvedPath(path.has_parent_path() ? path.parent_path() : ".");
    return folder ? joinAsText(*folder, lastPathComponent(path)) : path.string();
}

std::string windowWord(const std::string& identity) {
    return "Quorvel-" + stableHash(identity);
}

} // namespace quorvel
