#include "Platform/files/ContainedFolder.h"

#include "Base/HiddenNames.h"
#include "Base/PathText.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace quorvel {
namespace {

FileHandle openSubfolder(const FileHandle& folder, const char* name) {
    return FileHandle(
        ::openat(folder.descriptor(), name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

// The folder at `path` below `base`, created if missing; nothing is open if that fails.
FileHandle openFolderBelow(const std::filesystem::path& base, std::string_view path) {
    const std::string prefix = withoutTrailingSlashes(base).native() + "/";
    if (!path.starts_with(prefix) || hasNul(std::filesystem::path(path))) {
        return FileHandle(-1);
    }
    FileHandle folder(::open(prefix.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    for (path.remove_prefix(prefix.size()); !path.empty() && folder.descriptor() >= 0;) {
        const std::string name(path.substr(0, path.find('/')));
        path.remove_prefix(std::min(path.size(), name.size() + 1));
        if (name.empty() || name == ".") {
            continue;
        }
        if (name == "..") {
            return FileHandle(-1);
        }
        FileHandle next = openSubfolder(folder, name.c_str());
        if (next.descriptor() < 0 && errno == ENOENT) {
            ::mkdirat(folder.descriptor(), name.c_str(), 0700); // another process may be faster
            next = openSubfolder(folder, name.c_str());
        }
        folder = std::move(next);
    }
    return folder;
}

// Has `make` create an item under another name beside `path`, and renames it.
template<typename Make>
bool replaceBelow(const std::filesystem::path& base, std::string_view path, const Make& make) {
    const std::size_t slash = path.rfind('/');
    const std::string name(path.substr(slash + 1)); // npos + 1 is 0
    if (slash == std::string_view::npos || name.empty() || name == "." || name == ".." ||
        name.find('\0') != std::string::npos) {
        return false;
    }
    // A slash at its end makes the base itself a folder below it.
    const FileHandle folder = openFolderBelow(base, path.substr(0, slash + 1));
    const std::string beside = newHiddenName(unfinishedPrefix);
    if (folder.descriptor() < 0 || !make(folder.descriptor(), beside.c_str())) {
        return false;
    }
    if (::renameat(folder.descriptor(), beside.c_str(), folder.descriptor(), name.c_str()) == 0) {
        return true;
    }
    (void)::unlinkat(folder.descriptor(), beside.c_str(), 0);
    return false;
}

} // namespace

bool ensureFolderBelow(const std::filesystem::path& base, std::string_view path) {
    return openFolderBelow(base, path).descriptor() >= 0;
}

bool replaceFileBelow(const std::filesystem::path& base, std::string_view path,
                      std::string_view bytes) {
    return replaceBelow(base, path, [&](int folder, const char* name) {
        const FileHandle file(
            ::openat(folder, name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
        if (file.descriptor() >= 0 && file.write(bytes)) {
            return true;
        }
        if (file.descriptor() >= 0) {
            (void)::unlinkat(folder, name, 0);
        }
        return false;
    });
}

bool replaceLinkBelow(const std::filesystem::path& base, std::string_view path,
                      const std::filesystem::path& target) {
    return !hasNul(target) && replaceBelow(base, path, [&](int folder, const char* name) {
        return ::symlinkat(target.c_str(), folder, name) == 0;
    });
}

} // namespace quorvel
