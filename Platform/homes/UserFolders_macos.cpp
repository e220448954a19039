#include "Platform/homes/UserFolders.h"

#include "Base/PathText.h"

namespace quorvel {

std::string userFolder(std::string_view kind, const std::string& home) {
    return joinAsText(home, kind);
}

// On disk they have the same names in every language; only the Finder translates them.
std::vector<std::filesystem::path> renamedUserFolders(const std::string&) {
    return {};
}

} // namespace quorvel
