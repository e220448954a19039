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

/// The same for a text in a string.
[[nodiscard]] inline QString qtText(const std::string& text) {
    return qtText(std::string_view(text));
}
/// Returns a path as a QString, to be shown: it may not name the file any more.
[[nodiscard]] inline QString qtText(const std::filesystem::path& path) {
    return qtText(std::string_view(path.native()));
}

} // namespace quorvel
