#include "Platform/homes/XdgUserDirs_linux.h"

#include "Base/SplitText.h"
#include "Platform/files/FileReading.h"

#include <algorithm>
#include <string_view>

namespace quorvel {
namespace {

constexpr std::string_view prefix = "XDG_";
constexpr std::string_view middle = "_DIR=\"";
constexpr std::string_view homeMark = "$HOME";

// The file is read by shells, so these characters have a backslash before them.
constexpr std::string_view escaped = "\"\\$`";

std::string unescaped(std::string_view text) {
    std::string result;
    for (std::size_t index = 0; index < text.size(); ++index) {
        const bool escapes = text[index] == '\\' && index + 1 < text.size();
        result += text[escapes ? ++index : index];
    }
    return result;
}

std::string withEscapes(std::string_view text) {
    std::string result;
    for (const char byte : text) {
        if (escaped.find(byte) != std::string_view::npos) {
            result += '\\';
        }
        result += byte;
    }
    return result;
}

bool isBelowHome(std::string_view folder) {
    return folder == homeMark ||
           (folder.starts_with(homeMark) && folder.substr(homeMark.size()).starts_with("/"));
}

} // namespace

std::vector<XdgUserDir> parseXdgUserDirs(const std::string& text) {
    std::vector<XdgUserDir> folders;
    for (std::string_view rest = text; !rest.empty();) {
        const std::string line(takePart(rest, '\n'));
        const std::size_t name = line.find_first_not_of(" \t");
        const std::size_t value = line.find(middle);
        const std::size_t end = line.rfind('"');
        if (name == std::string::npos || value == std::string::npos ||
            line.compare(name, prefix.size(), prefix) != 0 || value < name + prefix.size() ||
            end < value + middle.size()) {
            continue;
        }
        const std::size_t start = value + middle.size();
        const std::string raw = line.substr(start, end - start);
        std::string folder = isBelowHome(raw)
                                 ? std::string(homeMark) + unescaped(raw.substr(homeMark.size()))
                                 : unescaped(raw);
        if (isBelowHome(raw) || folder.starts_with("/")) {
            folders.push_back({line.substr(name + prefix.size(), value - name - prefix.size()),
                               std::move(folder)});
        }
    }
    return folders;
}

std::vector<XdgUserDir> readXdgUserDirs(const std::filesystem::path& settings) {
    constexpr std::size_t limit = 65536;
    return parseXdgUserDirs(readFile(settings.native() + "/user-dirs.dirs", limit).value_or(""));
}

std::string xdgUserDirsText(const std::vector<XdgUserDir>& folders) {
    std::string text;
    for (const auto& [name, folder] : folders) {
        const std::string value =
            isBelowHome(folder)
                ? std::string(homeMark) + withEscapes(folder.substr(homeMark.size()))
                : withEscapes(folder);
        text.append(prefix).append(name).append(middle).append(value).append("\"\n");
    }
    return text;
}

std::string withHomeExpanded(const std::string& folder, const std::string& home) {
    return isBelowHome(folder) ? home + folder.substr(homeMark.size()) : folder;
}

} // namespace quorvel
