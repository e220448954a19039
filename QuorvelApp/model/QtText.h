#pragma once

#include <QString>

#include <filesystem>
#include <string>
#include <string_view>

namespace quorvel {

/// The kits' UTF-8 texts for the screen. Bytes that are no UTF-8 show as U+FFFD.
[[nodiscard]] inline QString qtText(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

[[nodiscard]] inline QString qtText(const std::string& text) {
    return qtText(std::string_view(text));
}
/// A path for the screen.
[[nodiscard]] inline QString qtText(const std::filesystem::path& path) {
    return qtText(std::string_view(path.native()));
}

} // namespace quorvel
