#include "tests/support/OtherVolume.h"

#include <sys/stat.h>

namespace quorvel::testing {

OtherVolume::OtherVolume(const std::filesystem::path& here) {
    struct stat ours {};
    struct stat others {};
    if (::stat(here.c_str(), &ours) == 0 && ::stat("/dev/shm", &others) == 0 &&
        ours.st_dev != others.st_dev) {
        const ScopedEnvironment place("TMPDIR", "/dev/shm");
        folder_.emplace();
    }
}

} // namespace quorvel::testing
