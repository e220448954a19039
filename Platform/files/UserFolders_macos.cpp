#include "Platform/files/UserFolders.h"

namespace quorvel {

// Their names on disk are the usual ones in every language; only the Finder shows others.
std::vector<std::filesystem::path> renamedUserFolders(const std::string&) {
    return {};
}

} // namespace quorvel
