#pragma once

#include <filesystem>

namespace quorvel {

/// Rebuilds the folder's list of which entry opens what, which desktops read instead of the
/// entries. Does nothing if the tool for that is missing. Waits for the tool for two seconds at
/// most.
void updateMimeDatabase(const std::filesystem::path& entryFolder);

} // namespace quorvel
