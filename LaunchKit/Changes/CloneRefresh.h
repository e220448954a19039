#pragma once

#include "LaunchKit/Changes/CloneChange.h"
#include "LaunchKit/Menu/MenuEntries.h"
#include "LaunchKit/Records/EnumNames.h"
#include "Platform/processes/LoadedModule.h"

#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace quorvel {

class CloneRevision;
class WrapperRevision;

/// Why a clone should be refreshed.
enum class StaleReason { runner, arguments, icon };

template<>
inline constexpr auto enumNames<StaleReason> = namesOfAllCases<StaleReason>({
    {StaleReason::runner, "runner"},
    {StaleReason::arguments, "arguments"},
    {StaleReason::icon, "icon"},
});

/// Brings clones up to date with Quorvel and with their targets. One object refreshes many clones
/// and reads the runner and the menu once. When it is destroyed, desktops are told what the clones
/// open. Any thread, but one at a time.
class CloneRefresh {
public:
    /// Without `runner`, it is located. `isSelfContained` as in `WrapperGenerator::Options`. Throws
    /// `WrapperFactory::FactoryError` if the runner isn't found, and `PlatformError` if it can't be
    /// read.
    explicit CloneRefresh(const std::optional<std::filesystem::path>& runner = std::nullopt,
                          bool isSelfContained = modulesBelongToBundles());

    /// Returns which parts of a clone would be different if it were made now. Throws `Error` if it
    /// is no longer a clone.
    [[nodiscard]] std::vector<StaleReason> reasonsFor(const InstanceRecord& record) const;

    /// Gives the clone at `wrapper` the current runner, its engine's arguments unless others were
    /// typed, and its target's icon unless another was chosen. Throws `Error`; the clone is as it
    /// was then.
    [[nodiscard]] ChangedClone refresh(const std::filesystem::path& wrapper) const;

private:
    [[nodiscard]] bool hasOldRunner(const std::filesystem::path& wrapper) const;
    /// Whether the runner is old, or what a self-contained wrapper contains beside it, or where the
    /// rest is looked for.
    [[nodiscard]] bool hasOldPrograms(const WrapperRevision& wrapper) const;
    [[nodiscard]] CloneRevision revisionOf(const std::filesystem::path& wrapper) const;

    std::filesystem::path runner_;
    bool isSelfContained_;
    std::string bytes_{};
    mutable std::optional<PublishedMenu> menu_{};
    mutable std::set<std::filesystem::path> tidied_{}; ///< folders of clones
};

} // namespace quorvel
