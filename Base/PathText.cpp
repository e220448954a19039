#include "Base/PathText.h"

#include "Base/SplitText.h"

namespace quorvel {
namespace fs = std::filesystem;
namespace {

std::string_view trimmed(std::string_view path) {
    while (path.size() > 1 && path.ends_with('/')) {
        path.remove_suffix(1);
    }
    return path;
}

} // namespace

std::string joinAsText(std::string base, std::string_view name) {
    base.reserve(base.size() + 1 + name.size());
    return std::move(base.append(1, '/').append(name));
}

fs::path joinAsText(const fs::path& base, std::string_view name) {
    return joinAsText(base.native(), name);
}

std::string withoutTrailingSlashes(std::string path) {
    path.resize(trimmed(path).size());
    return path;
}

fs::path withoutTrailingSlashes(const fs::path& path) {
    return trimmed(path.native());
}

std::string lastPathComponent(const fs::path& path) {
    const std::string_view text = trimmed(path.native());
    const std::size_t slash = text == "/" ? std::string_view::npos : text.rfind('/');
    return std::string(text.substr(slash + 1));
}

bool isAtOrBelow(std::string_view path, std::string_view folder) noexcept {
    return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

std::string withoutFoldersBelow(std::string_view list, std::string_view folder) {
    std::string kept;
    while (!list.empty()) {
        const std::string_view each = takePart(list, ':');
        if (!isAtOrBelow(each, folder)) {
            kept.append(kept.empty() ? "" : ":").append(each);
        }
    }
    return kept;
}

bool hasNul(const std::string& text) noexcept {
    return text.find('\0') != std::string::npos;
}

bool hasNul(const fs::path& path) noexcept {
    return hasNul(path.native());
}

} // namespace quorvel
