#include "Base/PathText.h"
#include "Platform/homes/UserFolders.h"
#include "Platform/homes/UserPaths.h"
#include "Platform/homes/XdgFolders_linux.h"
#include "Platform/homes/XdgUserDirs_linux.h"

namespace quorvel {
namespace fs = std::filesystem;
namespace {

// The session's settings are about the user's home, even if they are elsewhere.
std::vector<fs::path> settingsFolders(const std::string& home) {
    std::vector<fs::path> folders{home + "/.config"};
    if (xdgConfigHome() != folders.front()) {
        folders.insert(folders.begin(), xdgConfigHome());
    }
    return folders;
}

std::string_view xdgNameOf(std::string_view kind) {
    return kind == "Downloads" ? "DOWNLOAD" : kind == "Documents" ? "DOCUMENTS" : "DESKTOP";
}

} // namespace

std::string userFolder(std::string_view kind, const std::string& home) {
    for (const fs::path& settings : settingsFolders(home)) {
        for (const XdgUserDir& named : readXdgUserDirs(settings)) {
            std::string folder = withoutTrailingSlashes(withHomeExpanded(named.folder, home));
            // A folder that the user switched off is set to the home itself.
            if (named.name == xdgNameOf(kind) && folder != home) {
                return folder;
            }
        }
    }
    return joinAsText(home, kind);
}

std::vector<fs::path> renamedUserFolders(const std::string& home) {
    std::vector<fs::path> folders;
    for (const fs::path& settings : settingsFolders(home)) {
        for (const XdgUserDir& named : readXdgUserDirs(settings)) {
            folders.emplace_back(withHomeExpanded(named.folder, home));
        }
    }
    return folders;
}

} // namespace quorvel
