#include "LaunchKit/WindowWord.h"

#include "Base/PathText.h"
#include "Base/StableHash.h"

namespace quorvel {
namespace fs = std::filesystem;

std::string cloneIdentity(const fs::path& wrapper) {
    std::error_code code;
    const fs::path absolute = fs::absolute(withoutTrailingSlashes(wrapper), code);
    const fs::path resolved = fs::weakly_canonical(absolute, code);
    return code ? absolute.lexically_normal().string() : resolved.string();
}

std::string windowWord(const std::string& identity) {
    return "Quorvel-" + stableHash(identity);
}

} // namespace quorvel
