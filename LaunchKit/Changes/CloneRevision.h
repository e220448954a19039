#pragma once

#include "LaunchKit/Changes/CloneChange.h"
#include "LaunchKit/Menu/MenuEntries.h"
#include "LaunchKit/Wrappers/WrapperRevision.h"
#include "Platform/files/FileLock.h"
#include "Platform/staging/StagedChange.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quorvel {

/// Returns the wrapper's path without links, or `wrapper` if it can't be resolved.
[[nodiscard]] std::filesystem::path realWrapper(const std::filesystem::path& wrapper);

/// A clone that is being changed: locked, and read as it is.
class CloneRevision {
public:
    /// Waits for other changes beside the wrapper. Throws `Error` if it is not a clone.
    explicit CloneRevision(const std::filesystem::path& wrapper);

    /// The same with a function that takes the lock on the folder.
    using Lock = std::function<std::optional<FileLock>(const std::filesystem::path& folder)>;
    CloneRevision(const std::filesystem::path& wrapper, const Lock& lock);

    /// Returns the wrapper's path without links.
    [[nodiscard]] const std::filesystem::path& wrapper() const { return wrapper_; }
    [[nodiscard]] const WrapperRevision& old() const { return old_; }

    /// Replaces the wrapper at once if anything changes, and publishes the clone in the menu, which
    /// it reads unless the caller has. Throws `Error`.
    [[nodiscard]] ChangedClone replace(const WrapperRevision::Changes& changes,
                                       PublishedMenu* menu = nullptr) const;

private:
    std::filesystem::path wrapper_;
    std::optional<FileLock> lock_;
    WrapperRevision old_;
};

/// Returns the settings with what editing leaves as it is: the identifier, the data folder, the
/// kind, the target and the name; with the engine's arguments, if that is where they come from and
/// the user has not changed them.
[[nodiscard]] CloneSettings completedSettings(const WrapperRevision& old, CloneSettings settings);

/// Returns the clone after a change, published in the menu under its own picture. Reads the menu
/// unless the caller has. A failure to do so or to publish is a warning.
[[nodiscard]] ChangedClone published(const std::filesystem::path& wrapper,
                                     std::vector<std::string> kept, PublishedMenu* menu = nullptr);

} // namespace quorvel
