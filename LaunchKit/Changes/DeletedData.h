#pragma once

#include "Base/Error.h"

#include <cstddef>
#include <filesystem>
#include <string>

namespace quorvel {

/// A deletion that would remove something other than the clone's; nothing was changed. The text is
/// for the user.
class RefusedDeletion : public Error {
public:
    using Error::Error;
};

/// What happened to a deleted clone's data folder.
struct DeletedData {
    enum class Case {
        untouched, ///< not requested, or nothing existed
        spared,    ///< the configuration names the user's home, or no folder
        kept,      ///< none of it could be removed
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

    /// Returns whether something remains that should not.
    [[nodiscard]] bool isFailure() const {
        return outcome == Case::kept || outcome == Case::partly || !wrapperReason.empty();
    }
    /// Returns what remains and why; empty if that is as requested.
    [[nodiscard]] std::string description() const;
};

} // namespace quorvel
