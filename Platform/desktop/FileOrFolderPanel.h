#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace quorvel {

/// Lets the user choose one file or folder. `prompt` is the text of the default button. Returns
/// std::nullopt if the user cancels. Must be called on the main thread.
using FileOrFolderPanel =
    std::function<std::optional<std::filesystem::path>(const std::string& prompt)>;

/// Returns the system's panel, or an empty function where Qt has to show one.
[[nodiscard]] FileOrFolderPanel systemFileOrFolderPanel();

} // namespace quorvel
