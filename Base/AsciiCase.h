#pragma once

#include <algorithm>
#include <string>
#include <string_view>

/// Lower case of ASCII letters, independent of the locale. All other bytes stay as they are.
namespace quorvel {

/// Returns the letter in lower case.
[[nodiscard]] constexpr char asciiLower(char letter) noexcept {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

/// Returns the text in lower case.
[[nodiscard]] inline std::string asciiLower(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char letter) { return asciiLower(letter); });
    return lower;
}

} // namespace quorvel
