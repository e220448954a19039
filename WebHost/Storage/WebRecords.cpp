#include "WebHost/Storage/WebRecords.h"

#include "Platform/staging/ExclusiveRename.h"

#include <cerrno>

namespace quorvel {

bool KeptWebFile::setAside() const {
    constexpr int mostCopies = 100;
    for (int number = 1; number <= mostCopies; ++number) {
        if (!itemOrLinkExists(path_)) {
            return true;
        }
        std::error_code code;
        if (std::filesystem::is_directory(std::filesystem::symlink_status(path_, code))) {
            return false;
        }
        const std::string aside = path_ + ".damaged-" + std::to_string(number);
        if (renameExclusively(path_, aside) == 0) {
            return true;
        }
        if (errno != EEXIST) {
            return false;
        }
    }
    return false;
}

} // namespace quorvel
