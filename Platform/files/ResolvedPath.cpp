#include "Platform/files/ResolvedPath.h"

#include "Base/PathText.h"

#include <cstdlib>
#include <memory>

namespace quorvel {

std::optional<std::string> resolvedPath(const std::filesystem::path& path) {
    if (hasNul(path)) {
        return std::nullopt;
    }
    const std::unique_ptr<char, decltype(&std::free)> found(::realpath(path.c_str(), nullptr),
                                                            &std::free);
    return found ? std::optional<std::string>(found.get()) : std::nullopt;
}

} // namespace quorvel
