#pragma once

#include "Base/Error.h"

#include <cstddef>
#include <filesystem>
#include <string>

namespace quorvel {

/// A deletion that would take what is not the clone's; nothing was changed. The text is for the
/// user.
class RefusedDeletion : public Error {
public:
    using Error::Error;
};

/// What became of a deleted clone's data folder.
struct DeletedData {
    enum class Case {
        untouched, ///< not asked for, or nothing was there
        spared,    ///< the configuration names the user's home, or nothing
        kept,      ///< nothing of it could be removed
        partly,    ///< some of it could not be removed
        removed
    };

    Case outcome = Case::untouched;
    std::filesystem::path folder{};
    std::size_t removedItems = 0;
    std::size_t remainingItems = 0;
    std::string reason{}; ///< a sentence for the user, why something remains
    std::string
        wrapperReason{}; ///< likewise, why the rest of the wrapper does; empty if it is gone

    /// Whether something remains that should not.
    [[nodiscard]] bool isFailure() const {
        return outcome == Case::kept || outcome == Case::partly || !wrapperReason.empty();
    }
    /// What remains and why; empty when that is as it was asked for.
    [[nodiscard]] std::string description() const;
};

} // namespace quorvel
