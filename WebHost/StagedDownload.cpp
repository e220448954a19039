#include "WebHost/StagedDownload.h"

#include "Platform/files/ExclusiveRename.h"
#include "Platform/files/FileHandle.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/PlatformError.h"
#include "WebHost/DownloadName.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

std::string prefixOf(const std::string& mark) {
    return ".quorvel-" + mark + "-";
}

// Some file systems can't rename exclusively. There the name is claimed by an empty file first.
int renameOntoClaim(const fs::path& source, const fs::path& destination) {
    const FileHandle claim(
        ::open(destination.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    return claim.descriptor() < 0 ? -1 : ::rename(source.c_str(), destination.c_str());
}

bool isUnsupported(int error) {
    return error == EINVAL || error == ENOSYS || error == ENOTSUP;
}

} // namespace

StagedDownload::StagedDownload(const fs::path& downloads, const std::string& mark,
                               std::string_view suggested)
    : downloads_(downloads),
      name_(safeDownloadName(suggested)) {
    createDirectories(downloads);
    std::string folder = (downloads / (prefixOf(mark) + "XXXXXX")).string();
    if (::mkdtemp(folder.data()) == nullptr) {
        throw PlatformError::fromErrno(downloads, "written");
    }
    stage_ = folder;
}

StagedDownload::StagedDownload(StagedDownload&& other) noexcept
    : downloads_(std::move(other.downloads_)),
      stage_(std::exchange(other.stage_, fs::path())),
      name_(std::move(other.name_)) {}

StagedDownload::~StagedDownload() {
    if (stage_.empty()) {
        return;
    }
    for (const std::string& name : directoryEntries(stage_).value_or(std::vector<std::string>())) {
        (void)::unlink((stage_ / name).c_str());
    }
    (void)::rmdir(stage_.c_str());
}

fs::path StagedDownload::publish() {
    constexpr int mostCopies = 10'000;
    struct stat facts {};
    if (::lstat(file().c_str(), &facts) != 0) {
        throw PlatformError::fromErrno(file(), "read");
    }
    if (!S_ISREG(facts.st_mode)) {
        throw PlatformError(std::make_error_code(std::errc::invalid_argument), file(), "read");
    }
    (void)::chmod(file().c_str(), 0600);
    for (int number = 1; number < mostCopies; ++number) {
        const fs::path target = downloads_ / numberedName(name_, number);
        int result = renameExclusively(file(), target);
        if (result != 0 && isUnsupported(errno)) {
            result = renameOntoClaim(file(), target);
        }
        if (result == 0) {
            return target;
        }
        if (errno != EEXIST) {
            throw PlatformError::fromErrno(target, "written");
        }
    }
    throw PlatformError(std::make_error_code(std::errc::file_exists), downloads_ / name_,
                        "written");
}

void StagedDownload::removeLeftovers(const fs::path& downloads, const std::string& mark) {
    const std::string prefix = prefixOf(mark);
    for (const std::string& name :
         directoryEntries(downloads).value_or(std::vector<std::string>())) {
        if (name.starts_with(prefix) && name.size() == prefix.size() + 6) {
            (void)::rmdir((downloads / name).c_str()); // one with a file in it stays
        }
    }
}

} // namespace quorvel
