#include "WebHost/Downloads/StagedDownload.h"

#include "Base/HiddenNames.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/PlatformError.h"
#include "Platform/files/UnsupportedOperation.h"
#include "Platform/staging/ExclusiveRename.h"
#include "WebHost/Downloads/DownloadName.h"

#include <cerrno>
#include <system_error>
#include <utility>
#include <vector>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

std::string prefixOf(const std::string& mark) {
    return std::string(unfinishedPrefix) + mark + "-";
}

// For file systems that can't rename exclusively: a hard link never replaces anything.
int renameByLink(const fs::path& source, const fs::path& destination) {
    std::error_code code;
    fs::create_hard_link(source, destination, code);
    if (code) {
        errno = code.value();
        return -1;
    }
    fs::remove(source, code);
    return 0;
}

} // namespace

StagedDownload::StagedDownload(const fs::path& downloads, const std::string& mark,
                               std::string_view suggested)
    : downloads_(downloads),
      name_(safeDownloadName(suggested)) {
    createDirectories(downloads);
    const fs::path folder = downloads / newHiddenName(prefixOf(mark));
    createPrivateFolder(folder);
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
    std::error_code ignored;
    for (const std::string& name : directoryEntries(stage_).value_or(std::vector<std::string>())) {
        fs::remove(stage_ / name, ignored);
    }
    fs::remove(stage_, ignored);
}

fs::path StagedDownload::publish() {
    constexpr int mostCopies = 10'000;
    std::error_code code;
    if (fs::symlink_status(file(), code).type() != fs::file_type::regular) {
        throw PlatformError(code ? code : std::make_error_code(std::errc::invalid_argument), file(),
                            "read");
    }
    fs::permissions(file(), fs::perms::owner_read | fs::perms::owner_write, code);
    for (int number = 1; number < mostCopies; ++number) {
        fs::path target = downloads_ / numberedName(name_, number);
        int result = renameExclusively(file(), target);
        if (result != 0 && meansNoSuchRename(errno)) {
            result = renameByLink(file(), target);
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
        if (isHiddenName(name, prefix)) {
            std::error_code ignored;
            if (fs::is_directory(fs::symlink_status(downloads / name, ignored))) {
                fs::remove(downloads / name, ignored); // fails if there is a file in it
            }
        }
    }
}

} // namespace quorvel
