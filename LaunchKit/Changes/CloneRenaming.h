#pragma once

#include "LaunchKit/Changes/CloneChange.h"

#include <filesystem>
#include <string>

namespace quorvel {

/// The new name of a clone.
struct CloneRenaming {
    std::string name{};
    bool movesData = false; ///< the data folder, too, is renamed
};

/// Gives the clone at `wrapper` another name: its wrapper, its entry in the menu, and with
/// `movesData` its data folder, whose new place must be free. Throws `Error`, such as `HomeInUse`
/// if the data can't be moved because the clone runs; the clone is as it was then.
[[nodiscard]] ChangedClone renameClone(const std::filesystem::path& wrapper,
                                       const CloneRenaming& renaming);

} // namespace quorvel
