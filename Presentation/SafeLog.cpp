#include "Presentation/SafeLog.h"

#include "Base/TerminalText.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

namespace quorvel {
namespace {

// Returns how many bytes at the end are the beginning of a character.
std::size_t brokenEnd(std::string_view text) {
    constexpr std::size_t longest = 3;
    for (std::size_t count = 1; count <= std::min(longest, text.size()); ++count) {
        const auto byte = static_cast<unsigned char>(text[text.size() - count]);
        if (byte >= 0xC0) {
            const std::size_t length = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : 2;
            return length > count ? count : 0;
        }
        if (byte < 0x80) {
            return 0;
        }
    }
    return 0;
}

} // namespace

std::string SafeLog::operator()(const std::string& bytes) {
    std::string text = std::exchange(broken_, {}) + bytes;
    const std::size_t broken = brokenEnd(text);
    broken_ = text.substr(text.size() - broken);
    text.resize(text.size() - broken);
    std::string safe;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find_first_of("\n\t", start), text.size());
        safe += terminalText(std::string_view(text).substr(start, end - start), text.size());
        safe += text.substr(end, 1);
        start = end + 1;
    }
    return safe;
}

} // namespace quorvel
