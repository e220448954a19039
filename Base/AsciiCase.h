#pragma once

#include <algorithm>
#include <string>
#include <string_view>

/// The case of ASCII letters, in every locale. All other bytes stay as they are.
namespace quorvel {

/// Returns the small letter of a capital one.
[[nodiscard]] constexpr char asciiLower(char letter) noexcept {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

/// Returns the text in small letters.
[[nodiscard]] inline std::string asciiLower(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char letter) { return asciiLower(letter); });
    return lower;
}

} // namespace quorvel
