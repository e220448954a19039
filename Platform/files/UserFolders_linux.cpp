#include "Platform/files/UserFolders.h"

#include "Platform/files/FileReading.h"

#include <cstdlib>
#include <sstream>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

// A line is XDG_MUSIC_DIR="$HOME/Musik" or XDG_MUSIC_DIR="/data/Musik". Others give an empty path.
fs::path folderIn(const std::string& line, const std::string& home) {
    const std::size_t start = line.find("_DIR=\"");
    const std::size_t end = line.rfind('"');
    constexpr std::size_t keyLength = 6;
    if (!line.starts_with("XDG_") || start == std::string_view::npos || end < start + keyLength) {
        return {};
    }
    const std::string value = line.substr(start + keyLength, end - start - keyLength);
    constexpr std::string_view homeMark = "$HOME";
    return value.starts_with(homeMark) ? home + value.substr(homeMark.size()) : value;
}

} // namespace

std::vector<fs::path> renamedUserFolders(const std::string& home) {
    constexpr std::size_t limit = 65536;
    std::vector<std::string> files{home + "/.config/user-dirs.dirs"};
    if (const char* settings = std::getenv("XDG_CONFIG_HOME"); settings && settings[0] == '/') {
        files.push_back(std::string(settings) + "/user-dirs.dirs");
    }
    std::vector<fs::path> folders;
    for (const std::string& file : files) {
        std::istringstream lines(readFile(file, limit).value_or(""));
        for (std::string line; std::getline(lines, line);) {
            fs::path folder = folderIn(line, home);
            if (folder.is_absolute()) {
                folders.push_back(std::move(folder));
            }
        }
    }
    return folders;
}

} // namespace quorvel
