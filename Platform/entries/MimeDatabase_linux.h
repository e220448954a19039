#pragma once

#include <filesystem>

namespace quorvel {

/// Rebuilds the list of which entry in the folder opens what, which desktops read instead of the
/// entries. Does nothing if the tool that does so is missing. Waits for it, but not for long.
void updateMimeDatabase(const std::filesystem::path& entryFolder);

} // namespace quorvel
