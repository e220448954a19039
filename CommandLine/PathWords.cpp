#include "CommandLine/PathWords.h"

#include "Base/PathText.h"
#include "Platform/homes/UserPaths.h"

#include <algorithm>

namespace quorvel {
namespace fs = std::filesystem;

// A clone whose name looks like a path must not be mistaken for that path.
bool isPath(const std::string& words) {
    const auto starts = {"/", "~", "./", "../"};
    return std::any_of(starts.begin(), starts.end(),
                       [&](const char* start) { return words.starts_with(start); });
}

fs::path absolutePath(const std::string& path) {
    if (path.empty() || path.front() == '~') {
        return path;
    }
    const fs::path whole = withoutTrailingSlashes(fs::absolute(path));
    if (std::find(whole.begin(), whole.end(), "..") == whole.end()) {
        return withoutTrailingSlashes(whole.lexically_normal());
    }
    // A link before ".." is resolved first; a link at the end is kept.
    const fs::path name = whole.filename();
    std::error_code code;
    const fs::path resolved = name == "." || name == ".."
                                  ? fs::weakly_canonical(whole, code)
                                  : fs::weakly_canonical(whole.parent_path(), code) / name;
    return code ? whole : withoutTrailingSlashes(resolved);
}

fs::path absoluteFile(const std::string& path) {
    return UserPaths::expandTilde(absolutePath(path).string());
}

} // namespace quorvel
