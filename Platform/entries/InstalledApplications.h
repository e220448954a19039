#pragma once

#include "Platform/entries/DesktopEntry.h"
#include "Platform/entries/EntryFolders.h"

#include <filesystem>
#include <string>
#include <vector>

namespace quorvel {

/// An application that is installed and can be started.
struct InstalledApplication {
    std::string id{}; ///< of the entry: "org.example.App.desktop"
    std::filesystem::path file{};
    DesktopEntry entry{};
};

/// Returns the applications whose entries lie in these folders and the folders inside them, in no
/// particular order. Of several entries with one id the first counts, even if it can't be read.
/// Leaves out entries that are hidden, not shown on this desktop, for a terminal, or not of an
/// application, those whose program is missing, and Quorvel and its clones. Looks at no more than
/// `maxEntryFiles` files of a folder tree, and no deeper than `maxEntryDepth` folders. Programs in
/// a folder that does not answer within two seconds count as missing. Returns none on macOS.
[[nodiscard]] std::vector<InstalledApplication> installedApplications(
    const std::vector<std::filesystem::path>& folders = applicationEntryFolders());
constexpr std::size_t maxEntryFiles = 20000;
constexpr int maxEntryDepth = 8;

} // namespace quorvel
