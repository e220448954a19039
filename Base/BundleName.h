#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace quorvel {

/// Returns whether a directory entry has the name of an application bundle: one with the extension
/// "app", in lower case.
[[nodiscard]] bool isAppBundleName(std::string_view name);

/// Returns the folder's name without its extension: the identifier and the executable of a bundle
/// whose property list names none.
[[nodiscard]] std::string bundleFallbackName(const std::filesystem::path& bundle);

} // namespace quorvel
