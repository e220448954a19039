#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace quorvel {

/// Lets a person choose one file or one folder, whichever it is; `prompt` is the text of the button
/// that takes it. Returns std::nullopt if it was cancelled. Main thread.
using FileOrFolderPanel =
    std::function<std::optional<std::filesystem::path>(const std::string& prompt)>;

/// The system's own panel; empty where the toolkit has to show one.
[[nodiscard]] FileOrFolderPanel systemFileOrFolderPanel();

} // namespace quorvel
