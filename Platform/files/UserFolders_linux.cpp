#include "Platform/files/UserFolders.h"

#include "Platform/files/FileReading.h"
#include "Platform/files/XdgUserDirs_linux.h"

#include <cstdlib>

namespace quorvel {
namespace fs = std::filesystem;

std::vector<fs::path> renamedUserFolders(const std::string& home) {
    constexpr std::size_t limit = 65536;
    std::vector<std::string> files{home + "/.config/user-dirs.dirs"};
    if (const char* settings = std::getenv("XDG_CONFIG_HOME"); settings && settings[0] == '/') {
        files.push_back(std::string(settings) + "/user-dirs.dirs");
    }
    std::vector<fs::path> folders;
    for (const std::string& file : files) {
        for (const XdgUserDir& named : parseXdgUserDirs(readFile(file, limit).value_or(""))) {
            folders.emplace_back(withHomeExpanded(named.folder, home));
        }
    }
    return folders;
}

} // namespace quorvel
