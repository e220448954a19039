#include "Platform/files/Folder.h"

#include "Base/PathText.h"
#include "Platform/files/FileReading.h"

#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvel {
namespace fs = std::filesystem;

std::optional<Folder> Folder::open(const fs::path& path) {
    DIR* stream = hasNul(path) ? nullptr : ::opendir(path.c_str());
    return stream == nullptr ? std::nullopt : std::optional(Folder(path, stream));
}

std::optional<Folder> Folder::owning(int descriptor) {
    DIR* stream = descriptor < 0 ? nullptr : ::fdopendir(descriptor);
    if (stream == nullptr && descriptor >= 0) {
        ::close(descriptor);
    }
    return stream == nullptr ? std::nullopt : std::optional(Folder({}, stream));
}

std::vector<std::string> Folder::entries() {
    std::vector<std::string> names;
    ::rewinddir(stream_.get());
    while (const dirent* entry = ::readdir(stream_.get())) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") {
            names.emplace_back(name);
        }
    }
    return names;
}

bool Folder::has(const std::string& path) const {
    struct stat status {};
    return !hasNul(path) && ::fstatat(descriptor(), path.c_str(), &status, 0) == 0;
}

bool Folder::read(const std::string& path, std::size_t limit, std::string& bytes) const {
    return readFileIn(descriptor(), path, limit, bytes);
}

} // namespace quorvel
