#include "Platform/homes/XdgFolders_linux.h"

#include "Base/PathText.h"
#include "Base/SplitText.h"
#include "Platform/homes/UserPaths.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <string_view>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

std::string_view environment(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string_view() : value;
}

void addOnce(std::vector<fs::path>& folders, const fs::path& folder) {
    const fs::path plain = withoutTrailingSlashes(folder);
    if (plain.is_absolute() && std::find(folders.begin(), folders.end(), plain) == folders.end()) {
        folders.push_back(plain);
    }
}

fs::path ownFolder(const char* variable, std::string_view otherwise) {
    const std::string_view own = environment(variable);
    return own.starts_with('/') ? withoutTrailingSlashes(own)
                                : fs::path(joinAsText(UserPaths::home(), otherwise));
}

void addFolders(std::vector<fs::path>& folders, const char* variable, std::string_view otherwise) {
    std::string_view rest = environment(variable);
    if (rest.empty()) {
        rest = otherwise;
    }
    while (!rest.empty()) {
        addOnce(folders, takePart(rest, ':'));
    }
}

} // namespace

fs::path xdgConfigHome() {
    return ownFolder("XDG_CONFIG_HOME", ".config");
}

fs::path xdgDataHome() {
    return ownFolder("XDG_DATA_HOME", ".local/share");
}

std::vector<fs::path> xdgDataFolders() {
    std::vector<fs::path> folders{xdgDataHome()};
    addFolders(folders, "XDG_DATA_DIRS", defaultXdgDataDirs);
    addOnce(folders, joinAsText(folders.front(), "flatpak/exports/share"));
    addOnce(folders, "/var/lib/flatpak/exports/share");
    addOnce(folders, "/var/lib/snapd/desktop");
    return folders;
}

std::vector<fs::path> xdgConfigFolders() {
    std::vector<fs::path> folders{xdgConfigHome()};
    addFolders(folders, "XDG_CONFIG_DIRS", "/etc/xdg");
    return folders;
}

} // namespace quorvel
