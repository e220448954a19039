#include "WebHost/Pages/PageText.h"

#include "Base/TerminalText.h"

#include <algorithm>

namespace quorvel {
namespace {

std::size_t charactersIn(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
    }));
}

} // namespace

std::string pageText(std::string_view raw, std::size_t longest) {
    std::string spaced(raw);
    std::replace(spaced.begin(), spaced.end(), '\t', ' ');
    std::string shown;
    for (std::string_view rest = spaced; longest > 0;) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        const std::string line = withoutUnsafe(rest.substr(0, end), longest);
        shown += line;
        longest -= std::min(longest, charactersIn(line));
        if (end == rest.size()) {
            return shown;
        }
        rest.remove_prefix(end + 1);
        if (longest > 0) {
            shown += '\n';
            --longest;
        }
    }
    return shown.ends_with("…") ? shown : shown + "…";
}

} // namespace quorvel
