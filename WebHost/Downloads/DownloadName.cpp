#include "WebHost/Downloads/DownloadName.h"

#include "Base/TerminalText.h"

namespace quorvel {
namespace {

// Folders and devices in some system's names, or wildcards in a shell's.
constexpr std::string_view specialCharacters = "/\\:*?\"<>|";
constexpr std::string_view edges = " .\t";

// Where the extension begins; the name's end without one.
std::size_t startOfExtension(std::string_view name) {
    constexpr std::size_t longestExtension = 16;
    const std::size_t dot = name.rfind('.');
    const bool isOne =
        dot != std::string_view::npos && dot > 0 && name.size() - dot <= longestExtension;
    return isOne ? dot : name.size();
}

// Cut before a character and not inside one.
std::string_view cutTo(std::string_view text, std::size_t size) {
    if (text.size() <= size) {
        return text;
    }
    while (size > 0 && (static_cast<unsigned char>(text[size]) & 0xC0U) == 0x80U) {
        --size;
    }
    return text.substr(0, size);
}

std::string fitted(std::string_view stem, std::string_view ending) {
    return std::string(cutTo(stem, longestDownloadName - ending.size())) + std::string(ending);
}

} // namespace

std::string safeDownloadName(std::string_view suggested) {
    std::string name = withoutUnsafe(suggested);
    name.erase(0, name.find_last_of("/\\") + 1); // npos + 1 is 0
    for (char& byte : name) {
        byte = specialCharacters.find(byte) == std::string_view::npos ? byte : '_';
    }
    name.erase(0, name.find_first_not_of(edges));
    name.erase(name.find_last_not_of(edges) + 1);
    if (name.empty()) {
        return "download";
    }
    if (name.front() == '-' || name.front() == '~') {
        name.front() = '_';
    }
    const std::size_t extension = startOfExtension(name);
    return fitted(std::string_view(name).substr(0, extension),
                  std::string_view(name).substr(extension));
}

std::string numberedName(std::string_view name, int number) {
    if (number < 2) {
        return std::string(name);
    }
    const std::size_t extension = startOfExtension(name);
    return fitted(name.substr(0, extension),
                  " (" + std::to_string(number) + ")" + std::string(name.substr(extension)));
}

} // namespace quorvel
