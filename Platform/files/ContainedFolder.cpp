#include "Platform/files/ContainedFolder.h"

#include "Base/PathText.h"
#include "Platform/files/FileHandle.h"

#include <algorithm>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>

namespace quorvel {

bool ensureFolderBelow(const std::filesystem::path& base, std::string_view path) {
    const std::string prefix = withoutTrailingSlashes(base).native() + "/";
    if (!path.starts_with(prefix) || hasNul(std::filesystem::path(path))) {
        return false;
    }
    FileHandle folder(::open(prefix.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    for (path.remove_prefix(prefix.size()); !path.empty() && folder.descriptor() >= 0;) {
        const std::string name(path.substr(0, path.find('/')));
        path.remove_prefix(std::min(path.size(), name.size() + 1));
        if (name.empty() || name == ".") {
            continue;
        }
        if (name == "..") {
            return false;
        }
        ::mkdirat(folder.descriptor(), name.c_str(), 0700); // it may exist
        folder = FileHandle(::openat(folder.descriptor(), name.c_str(),
                                     O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    }
    return folder.descriptor() >= 0;
}

} // namespace quorvel
