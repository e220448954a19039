#pragma once

#include <QString>

#include <filesystem>
#include <string>
#include <string_view>

namespace quorvel {

/// Returns a UTF-8 text as a QString. Invalid bytes become U+FFFD.
[[nodiscard]] inline QString qtText(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// Returns a UTF-8 string as a QString, as above.
[[nodiscard]] inline QString qtText(const std::string& text) {
    return qtText(std::string_view(text));
}
/// Returns a path as a QString for display only: invalid bytes are replaced.
[[nodiscard]] inline QString qtText(const std::filesystem::path& path) {
    return qtText(std::string_view(path.native()));
}

} // namespace quorvel
