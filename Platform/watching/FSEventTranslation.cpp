#include "Platform/watching/FSEventTranslation.h"

#include "Base/PathText.h"

#include <algorithm>
#include <filesystem>
#include <optional>

namespace quorvel {
namespace {

// The service's flags that do not describe a change of an item.
constexpr std::uint32_t userDropped = 0x00000002;
constexpr std::uint32_t kernelDropped = 0x00000004;

constexpr std::uint32_t lossFlags = FSEventFlag::mustScanSubDirs | userDropped | kernelDropped;
constexpr std::uint32_t knownFlags = FSEventFlag::itemCreated | FSEventFlag::itemRemoved |
                                     FSEventFlag::itemRenamed | FSEventFlag::itemModified |
                                     FSEventFlag::itemIsDir;

std::string realPath(const std::string& path) {
    std::error_code code;
    const std::filesystem::path real = std::filesystem::weakly_canonical(path, code);
    return code ? path : withoutTrailingSlashes(real).string();
}

// Returns the part of `path` after `folder`, including the slash, or std::nullopt if `path` is not
// below it.
std::optional<std::string_view> below(std::string_view folder, std::string_view path) {
    const std::size_t length = folder == "/" ? 0 : folder.size();
    if (!path.starts_with(folder) || (path.size() > length && path[length] != '/')) {
        return std::nullopt;
    }
    return path.substr(length);
}

// All kinds of loss are reported as one flag.
std::uint32_t translatedFlags(std::uint32_t flags) {
    return (flags & knownFlags) | ((flags & lossFlags) != 0 ? FSEventFlag::mustScanSubDirs : 0U);
}

} // namespace

FSEventTranslation::FSEventTranslation(const std::vector<std::string>& given) {
    for (const std::string& path : given) {
        const std::string shown = withoutTrailingSlashes(path);
        roots_.push_back({shown, realPath(shown)});
    }
}

std::vector<std::string> FSEventTranslation::realRoots() const {
    std::vector<std::string> result;
    for (const Root& root : roots_) {
        if (std::find(result.begin(), result.end(), root.real) == result.end()) {
            result.push_back(root.real);
        }
    }
    return result;
}

std::string FSEventTranslation::givenPath(std::string_view path) const {
    for (const Root& root : roots_) {
        if (const auto rest = below(root.real, path)) {
            return (root.given == "/" && !rest->empty() ? std::string{} : root.given) +
                   std::string(*rest);
        }
    }
    return std::string(path);
}

FSEventBatch FSEventTranslation::translated(const std::vector<std::string>& paths,
                                            std::span<const std::uint32_t> flags) const {
    FSEventBatch batch;
    if (paths.size() != flags.size()) {
        return batch;
    }
    for (const std::string& path : paths) {
        batch.paths.push_back(givenPath(path));
    }
    for (const std::uint32_t flag : flags) {
        batch.flags.push_back(translatedFlags(flag));
    }
    return batch;
}

} // namespace quorvel
