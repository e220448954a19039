#pragma once

#include "Platform/copying/FolderCopy.h"

#include <filesystem>
#include <optional>
#include <string>

/// What is particular about copying the data of applications.
namespace quorvel {

/// Returns whether an item stays behind when a data folder is copied: what says that an application
/// is running there, what is written again at each start, and the clone's log. A copied lock would
/// open its pages in the original, or keep the copy from starting.
[[nodiscard]] bool staysBehind(const CopiedItem& item);

/// Returns the lock in the folder, relative to it, of a browser or mail program that is running;
/// std::nullopt if there is none. A lock alone proves nothing: its process must be running, on this
/// computer, and since before the lock was made.
[[nodiscard]] std::optional<std::string> lockInUse(const std::filesystem::path& folder);

} // namespace quorvel
