#pragma once

#include "Presentation/Translation.h"

#include <cstddef>
#include <string>
#include <vector>

/// The outcome of refreshing several clones.
namespace quorvel {

/// What a refresh did.
struct RefreshSummary {
    std::size_t refreshed = 0;
    std::size_t current = 0;             ///< those that were up to date
    std::size_t skipped = 0;             ///< those that it did not get to before it was cancelled
    std::vector<std::string> failures{}; ///< a sentence for each clone that couldn't be refreshed
    std::vector<std::string> notes{};    ///< sentences about those that were
};

/// Returns the message about a refresh: how many clones were refreshed, how many not and why.
[[nodiscard]] std::string refreshMessage(const RefreshSummary& summary, const Translate& translate);

} // namespace quorvel
