#include "Platform/desktop/XdgFolders_linux.h"

#include "Base/PathText.h"
#include "Platform/files/UserPaths.h"

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

// The parts of a list like that of PATH.
template<typename Take>
void forEachPart(std::string_view list, const Take& take) {
    while (!list.empty()) {
        const std::size_t end = std::min(list.find(':'), list.size());
        take(list.substr(0, end));
        list.remove_prefix(std::min(end + 1, list.size()));
    }
}

void addFolders(std::vector<fs::path>& folders, const char* variable, std::string_view otherwise) {
    const std::string_view list = environment(variable);
    forEachPart(list.empty() ? otherwise : list,
                [&](std::string_view folder) { addOnce(folders, folder); });
}

} // namespace

fs::path xdgDataHome() {
    return ownFolder("XDG_DATA_HOME", ".local/share");
}

std::vector<fs::path> xdgDataFolders() {
    std::vector<fs::path> folders{xdgDataHome()};
    addFolders(folders, "XDG_DATA_DIRS", "/usr/local/share:/usr/share");
    addOnce(folders, joinAsText(folders.front(), "flatpak/exports/share"));
    addOnce(folders, "/var/lib/flatpak/exports/share");
    addOnce(folders, "/var/lib/snapd/desktop");
    return folders;
}

std::vector<fs::path> xdgConfigFolders() {
    std::vector<fs::path> folders{ownFolder("XDG_CONFIG_HOME", ".config")};
    addFolders(folders, "XDG_CONFIG_DIRS", "/etc/xdg");
    return folders;
}

std::vector<std::string> xdgCurrentDesktops() {
    std::vector<std::string> desktops;
    forEachPart(environment("XDG_CURRENT_DESKTOP"),
                [&](std::string_view name) { desktops.emplace_back(name); });
    return desktops;
}

} // namespace quorvel
