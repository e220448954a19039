#pragma once

#include "Platform/staging/StagedChange.h"

#include <optional>
#include <string>

namespace quorvel {

/// The record of a change of several steps, kept in its hidden folder until it is complete.
struct ChangeJournal {
    std::string wrapper{};    ///< its name in the folder, and in the hidden folder if deleted
    std::string newWrapper{}; ///< the name that it gets; empty for a deletion
    /// What `StagedChange::numberOf` returns for the new wrapper; empty for a deletion.
    std::string number{};
    std::string home{};    ///< the path of the data folder that is moved or deleted, if any
    std::string newHome{}; ///< the path that it is moved to
    /// For a deletion, the device of the folder that contains the data folder.
    std::string device{};

    /// Returns the journal of a change; std::nullopt if it has none. Throws `PlatformError` if
    /// there is one that can't be read.
    [[nodiscard]] static std::optional<ChangeJournal> of(const StagedChange& change);

    /// Keeps it with the change. Throws `PlatformError`.
    void keepWith(StagedChange& change) const;

    /// Removes it, as far as possible: the change is complete, or was taken back.
    static void forget(const StagedChange& change);

    /// Notes, beside the journal of a deletion, the hidden folder that the data is moved to.
    /// Throws `PlatformError`.
    static void noteTrash(StagedChange& change, const StagedChange& trash);

    /// Returns the name of that folder; std::nullopt if none was noted.
    [[nodiscard]] static std::optional<std::string> trashOf(const StagedChange& change);
};

} // namespace quorvel
