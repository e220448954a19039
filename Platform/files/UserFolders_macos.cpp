#include "Platform/files/UserFolders.h"

namespace quorvel {

// On disk they have the same names in every language; only the Finder translates them.
std::vector<std::filesystem::path> renamedUserFolders(const std::string&) {
    return {};
}

} // namespace quorvel
