#include "Platform/files/FileWriting.h"

#include "Base/HiddenNames.h"
#include "Base/PathText.h"
#include "Platform/files/FileHandle.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/ItemAttributes.h"
#include "Platform/files/PlatformError.h"

#include <cerrno>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

// Without O_NONBLOCK, opening a FIFO would wait for its other end.
constexpr int writing = O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
constexpr int creating = writing | O_CREAT | O_EXCL;

// Removes the file unless it is kept. Preserves `errno`.
class UnfinishedFile {
public:
    explicit UnfinishedFile(fs::path path) : path_(std::move(path)) {}
    UnfinishedFile(const UnfinishedFile&) = delete;
    UnfinishedFile& operator=(const UnfinishedFile&) = delete;
    ~UnfinishedFile() {
        if (!kept_) {
            const int error = errno;
            (void)::unlink(path_.c_str());
            errno = error;
        }
    }

    void keep() { kept_ = true; }

private:
    fs::path path_;
    bool kept_ = false;
};

fs::path temporaryBeside(const fs::path& path) {
    return path.parent_path() / newHiddenName(unfinishedPrefix);
}

bool writeNew(const FileHandle& file, const fs::path& path, std::string_view bytes) {
    UnfinishedFile unfinished(path);
    if (!file.write(bytes)) {
        return false;
    }
    unfinished.keep();
    return true;
}

// `path` must not be a link, which renaming would replace.
bool replace(const fs::path& path, const FileHandle& old, const struct stat& facts,
             std::string_view bytes, Flush flush) {
    const fs::path beside = temporaryBeside(path);
    const FileHandle file(::open(beside.c_str(), creating, 0600));
    if (file.descriptor() < 0) {
        return false;
    }
    UnfinishedFile unfinished(beside);
    if (!file.write(bytes) || !copyAttributes(old.descriptor(), file.descriptor(), facts) ||
        (flush == Flush::now && ::fsync(file.descriptor()) != 0) ||
        ::rename(beside.c_str(), path.c_str()) != 0) {
        return false;
    }
    unfinished.keep();
    return true;
}

// The old file is not written to, but must be a regular one that the user may write.
bool replaceExisting(const fs::path& path, std::string_view bytes, Flush flush) {
    const FileHandle old(::open(path.c_str(), writing));
    struct stat facts {};
    if (old.descriptor() < 0 || ::fstat(old.descriptor(), &facts) != 0) {
        return false;
    }
    if (!S_ISREG(facts.st_mode)) {
        errno = S_ISDIR(facts.st_mode) ? EISDIR : EINVAL;
        return false;
    }
    std::error_code code;
    const fs::path resolved = fs::canonical(path, code);
    if (code) {
        errno = code.value();
        return false;
    }
    return replace(resolved, old, facts, bytes, flush);
}

std::optional<fs::path> targetOfDanglingLink(const fs::path& path) {
    struct stat facts {};
    std::error_code code;
    const fs::path target = fs::read_symlink(path, code);
    if (code || ::stat(path.c_str(), &facts) == 0 || errno != ENOENT) {
        return std::nullopt;
    }
    return path.parent_path() / target;
}

} // namespace

void writeFile(const fs::path& path, std::string_view bytes, Flush flush) {
    if (hasNul(path)) {
        throw PlatformError(std::make_error_code(std::errc::invalid_argument), path, "written");
    }
    const FileHandle file(::open(path.c_str(), creating, 0666));
    bool written = false;
    if (file.descriptor() >= 0) {
        written = writeNew(file, path, bytes);
    } else if (errno == EEXIST) {
        if (const auto missing = targetOfDanglingLink(path)) {
            return writeFile(*missing, bytes, flush);
        }
        written = replaceExisting(path, bytes, flush);
    }
    if (!written) {
        throw PlatformError::fromErrno(path, "written");
    }
}

void writeWholeFile(const fs::path& path, std::string_view bytes, Flush flush) {
    if (hasNul(path)) {
        throw PlatformError(std::make_error_code(std::errc::invalid_argument), path, "written");
    }
    const fs::path beside = temporaryBeside(path);
    const FileHandle file(::open(beside.c_str(), creating, 0666));
    if (file.descriptor() < 0) {
        throw PlatformError::fromErrno(path, "written");
    }
    UnfinishedFile unfinished(beside);
    if (!file.write(bytes) || (flush == Flush::now && ::fsync(file.descriptor()) != 0) ||
        ::rename(beside.c_str(), path.c_str()) != 0) {
        throw PlatformError::fromErrno(path, "written");
    }
    unfinished.keep();
}

void removeUnfinishedFiles(const fs::path& folder) {
    const auto before = fs::file_time_type::clock::now() - std::chrono::minutes(1);
    for (const std::string& name : directoryEntries(folder).value_or(std::vector<std::string>())) {
        const fs::path file = folder / name;
        struct stat facts {};
        std::error_code code;
        // A younger one may be another program's, which is about to rename it.
        if (isHiddenName(name, unfinishedPrefix) && ::lstat(file.c_str(), &facts) == 0 &&
            S_ISREG(facts.st_mode) && fs::last_write_time(file, code) < before && !code) {
            (void)::unlink(file.c_str());
        }
    }
}

} // namespace quorvel
