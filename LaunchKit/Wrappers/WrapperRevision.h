#pragma once

#include "Base/PropertyList.h"
#include "LaunchKit/AppBundle.h"
#include "LaunchKit/Changes/CloneSettings.h"
#include "LaunchKit/Wrappers/WrapperIcon.h"
#include "LaunchKit/Wrappers/WrapperNotes.h"
#include "Platform/processes/LoadedModule.h"
#include "Platform/staging/StagedChange.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace quorvel {

/// Writes a changed copy of a wrapper. What the user put into the wrapper or changed in it stays.
class WrapperRevision {
public:
    /// Reads the wrapper, whose path must lead through no link at its end. Throws `Error` if it is
    /// not a clone, or if its data is inside it.
    explicit WrapperRevision(std::filesystem::path wrapper);

    [[nodiscard]] const std::filesystem::path& wrapper() const { return wrapper_; }

    /// Returns the settings that the clone has.
    [[nodiscard]] const CloneSettings& settings() const { return settings_; }

    /// Returns the clone's target application; std::nullopt if it has none that can be read.
    [[nodiscard]] const std::optional<AppBundle>& target() const { return target_; }

    [[nodiscard]] const std::optional<WrapperNotes>& notes() const { return notes_; }

    /// Returns whether the clone has its target's icon, and the target's has changed since.
    [[nodiscard]] bool hasOldTargetIcon() const;

    /// Returns whether a program or module that a self-contained clone runs is missing from the
    /// wrapper, or other than the one beside `runner`.
    [[nodiscard]] bool hasOldParts(const std::filesystem::path& runner) const;

    /// Returns whether the clone looks elsewhere for the programs that are installed with `runner`.
    [[nodiscard]] bool hasOldHelpers(const std::filesystem::path& runner) const;

    /// Returns whether the arguments were the engine's, and the user has changed them since.
    [[nodiscard]] bool hasUsersArguments() const;

    /// What a copy changes.
    struct Changes {
        CloneSettings settings{};
        bool refreshesIcon = false; ///< takes the target's current icon, if it had its icon before
        bool isSelfContained = modulesBelongToBundles(); ///< see `WrapperGenerator::Options`
    };

    /// Writes the copy into the hidden folder of `change` under the name `name`. Returns what the
    /// user changed in the wrapper and the copy keeps, each to be read as an object: "the icon".
    /// Throws `Error`.
    std::vector<std::string> stage(const StagedChange& change, const std::string& name,
                                   const Changes& changes) const;

    /// Returns whether `stage` would change anything.
    [[nodiscard]] bool isChangedBy(const Changes& changes) const;

private:
    struct IconPlan;
    using Kept = std::vector<std::string>;

    [[nodiscard]] IconPlan iconPlan(const StagedChange& change, const Changes& changes,
                                    Kept& kept) const;
    [[nodiscard]] IconPlan keptIconPlan(const StagedChange& change, const Changes& changes,
                                        Kept& kept) const;
    [[nodiscard]] bool isIconOfTarget(const StagedChange& change) const;
    [[nodiscard]] bool isTargetsIcon(const StagedChange& change) const;
    [[nodiscard]] const std::string& iconHash() const;
    [[nodiscard]] bool isUsersIcon() const;
    [[nodiscard]] bool keepsUsersArguments(const CloneSettings& settings) const;
    [[nodiscard]] std::string propertyList(const CloneSettings& settings, bool hasIcon,
                                           Kept& kept) const;
    [[nodiscard]] WrapperNotes newNotes(const CloneSettings& settings, const IconPlan& plan) const;

    std::filesystem::path wrapper_;
    CloneSettings settings_{};
    std::optional<WrapperNotes> notes_{};
    std::optional<AppBundle> target_{};
    std::optional<PropertyListDictionary> list_{};
    mutable std::optional<std::string> iconHash_{}; ///< once it was asked for
};

} // namespace quorvel
