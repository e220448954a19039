#include "Platform/homes/UserFolders.h"

#include "Base/PathText.h"
#include "Platform/homes/UserPaths.h"

#include <array>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

constexpr std::array<std::string_view, 18> usualNames{
    "Desktop",  "Documents", "Downloads", "Library", "Movies",   "Music",
    "Pictures", "Public",    "Templates", "Videos",  ".ssh",     ".gnupg",
    ".config",  ".local",    ".cache",    ".var",    ".mozilla", "snap"};

} // namespace

std::vector<fs::path> userFolders() {
    std::vector<fs::path> folders;
    for (const std::string& home : UserPaths::allHomes()) {
        for (const std::string_view name : usualNames) {
            folders.push_back(joinAsText(home, name));
        }
        for (fs::path& folder : renamedUserFolders(home)) {
            folders.push_back(std::move(folder));
        }
    }
    return folders;
}

} // namespace quorvel
