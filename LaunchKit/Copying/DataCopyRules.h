#pragma once

#include "Platform/copying/FolderCopy.h"

#include <filesystem>
#include <optional>
#include <string>

/// Rules for copying the data of applications.
namespace quorvel {

/// Returns whether an item is left out when a data folder is copied: signs that an application is
/// running there, what each start writes again, and the clone's log. With a copied lock, the copy
/// would open its pages in the original, or not start.
[[nodiscard]] bool staysBehind(const CopiedItem& item);

/// Returns the lock in the folder, relative to it, of a browser or mail program that is running;
/// std::nullopt if there is none. A lock alone proves nothing: its process must be running, on this
/// computer, and since before the lock was made.
[[nodiscard]] std::optional<std::string> lockInUse(const std::filesystem::path& folder);

} // namespace quorvel
