#pragma once

#include "Platform/files/StagedChange.h"

#include <optional>
#include <string>

namespace quorvel {

/// What a change of several steps is about, kept in its hidden folder until it is complete.
struct ChangeJournal {
    std::string wrapper{};    ///< its name in the folder, and in the hidden folder if deleted
    std::string newWrapper{}; ///< the name that it gets; empty for a deletion
    /// What `StagedChange::numberOf` returns for the new wrapper, or the data folder's number if it
    /// is deleted.
    std::string number{};
    std::string home{};    ///< the path of the data folder that is moved or deleted, if any
    std::string newHome{}; ///< the path that it is moved to

    /// Returns the journal of a change; std::nullopt if it has none.
    [[nodiscard]] static std::optional<ChangeJournal> of(const StagedChange& change);

    /// Keeps it with the change. Throws `PlatformError`.
    void keepWith(StagedChange& change) const;

    /// Removes it, as far as possible: the change is complete, or was taken back.
    static void forget(const StagedChange& change);
};

} // namespace quorvel
