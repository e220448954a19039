#pragma once

#include "LaunchKit/AppCatalog.h"
#include "LaunchKit/Changes/CloneChange.h"
#include "QuorvelApp/model/NewCloneForm.h"

#include <filesystem>
#include <optional>
#include <vector>

namespace quorvel {

/// A clone that is to be edited, as it was when it was read.
struct EditedClone {
    std::filesystem::path wrapper{};
    CloneSettings settings{};
    bool hasUsersArguments = false; ///< the arguments were the engine's, and were changed since
    std::optional<std::filesystem::path> ownIcon{}; ///< absent if it has its target's
    std::optional<InstalledApp> target{};           ///< absent unless it is an application's clone

    /// Reads the clone at `wrapper`, once changes under way are done. Throws `Error`. Blocks. Any
    /// thread.
    [[nodiscard]] static EditedClone read(const std::filesystem::path& wrapper);

    /// Returns whether the clone has the arguments of its target's engine, as if none were entered.
    [[nodiscard]] bool hasEngineArguments() const;

    /// Returns the form that shows the clone.
    [[nodiscard]] NewCloneForm form() const;

    /// Returns one edit for each setting that differs in `form`. What the form does not show, or
    /// shows in another way than it is, stays as it is.
    [[nodiscard]] std::vector<CloneEdit> edits(const NewCloneForm& form) const;

    /// Makes the edits. Throws `Error`, also if the clone has been changed since it was read;
    /// nothing is changed then. Blocks. Any thread.
    [[nodiscard]] ChangedClone save(const std::vector<CloneEdit>& edits) const;
};

/// Returns whether the form of an edited clone can be saved: it has a target, and every quote in
/// its arguments is closed.
[[nodiscard]] bool isValidEdit(const NewCloneForm& form);

} // namespace quorvel
