#pragma once

#include <filesystem>
#include <vector>

namespace quorvel {

/// Puts right what interrupted changes left in a folder of clones: each is completed or taken back,
/// so that every clone is as it was before or as it was to be. Changes that are going on are left
/// alone. What fails is left to the next call. Never throws.
void finishInterruptedChanges(const std::filesystem::path& folder) noexcept;

/// Does that in several folders, each while no other change is made in it; leaves out those in
/// which one is. Also removes configurations that were not written completely, if older than a
/// minute, and copied data in ~/QuorvelInstances whose clone was not made. Quick where there is
/// nothing to do. Never throws.
void finishInterruptedChanges(const std::vector<std::filesystem::path>& folders) noexcept;

} // namespace quorvel
