#include "tests/support/SmallDisk.h"

#include "tests/support/PrivateMounts.h"

#include <sys/mount.h>

namespace quorvel::testing {

std::optional<std::string> onSmallDisk(const std::filesystem::path& folder,
                                       const std::string& options,
                                       const std::function<std::string()>& check) {
    return inPrivateMounts([&]() -> std::string {
        if (::mount("none", folder.c_str(), "tmpfs", 0, options.c_str()) != 0) {
            return "no file system can be mounted at " + folder.string();
        }
        return check();
    });
}

} // namespace quorvel::testing
