#include "LaunchKit/Launching/LogReader.h"

#include "Base/CloneLayout.h"
#include "Base/PathText.h"
#include "Platform/files/RegularFile.h"

#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace quorvel {

LogReader::LogReader(const std::string& home) : path_(joinAsText(home, instanceLogName)) {}

bool LogReader::hasLog() {
    return file_.descriptor() >= 0 || openNew();
}

std::uintmax_t LogReader::size() const {
    struct stat status {};
    return ::stat(path_.c_str(), &status) == 0 && S_ISREG(status.st_mode)
               ? static_cast<std::uintmax_t>(status.st_size)
               : 0;
}

std::string LogReader::next() {
    if (file_.descriptor() < 0 && !openNew()) {
        return {};
    }
    // Asked first: what is read afterwards is the end of a file that was set aside.
    const bool isReplaced = identityOfTarget(path_) != identity_;
    std::string bytes = readOn();
    if (bytes.empty() && isReplaced && openNew()) {
        offset_ = 0;
        bytes = readOn();
    }
    return bytes;
}

bool LogReader::openNew() {
    RegularFile file = openRegularFile(path_, O_RDONLY);
    struct stat status {};
    if (!file.isOpen() || ::fstat(file.descriptor(), &status) != 0) {
        return false;
    }
    file_ = std::move(file.handle);
    identity_ = identityOf(status);
    return true;
}

std::string LogReader::readOn() {
    constexpr std::size_t most = 65536;
    struct stat status {};
    if (::fstat(file_.descriptor(), &status) == 0 &&
        static_cast<std::uintmax_t>(status.st_size) < offset_) {
        offset_ = 0; // it was truncated
    }
    std::string bytes(most, '\0');
    ssize_t count = -1;
    do {
        count =
            ::pread(file_.descriptor(), bytes.data(), bytes.size(), static_cast<off_t>(offset_));
    } while (count < 0 && errno == EINTR);
    bytes.resize(count < 0 ? 0 : static_cast<std::size_t>(count));
    offset_ += bytes.size();
    return bytes;
}

} // namespace quorvel
