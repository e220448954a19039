#pragma once

#include <filesystem>
#include <vector>

namespace quorvel {

/// Puts right what interrupted changes left in a folder of clones: each is completed or taken back,
/// so that every clone is as it was before or as it was to be. Changes that are going on are left
/// alone. What fails is left to the next call. Never throws.
void finishInterruptedChanges(const std::filesystem::path& folder) noexcept;

/// Does that in several folders, locking each; skips those in which another change is being made.
/// Where there is nothing to do, it costs no more than listing them. Never throws.
void restoreClones(const std::vector<std::filesystem::path>& folders) noexcept;

/// Removes leftovers that only take space, after `restoreClones`: configurations in these folders
/// that were not written completely, if older than a minute, and copied data in ~/QuorvelInstances
/// whose clone was not made. Looks into every wrapper and every data folder. Never throws.
void removeLeftovers(const std::vector<std::filesystem::path>& folders) noexcept;

/// Does both.
void finishInterruptedChanges(const std::vector<std::filesystem::path>& folders) noexcept;

} // namespace quorvel
