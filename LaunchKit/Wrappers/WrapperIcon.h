#pragma once

#include "LaunchKit/AppBundle.h"
#include "LaunchKit/IconLabel.h"
#include "LaunchKit/Wrappers/WrapperNotes.h"

#include <filesystem>
#include <optional>
#include <string>

/// The icon of a wrapper: where it comes from, and how it gets there.
namespace quorvel {

struct WrapperIcon {
    std::filesystem::path file{};
    IconSource source = IconSource::target;
    std::string converted{}; ///< of a file that is not an icon container, with its label
};

/// Returns the chosen icon if that exists, otherwise the target's; std::nullopt if there is none.
[[nodiscard]] std::optional<WrapperIcon>
wrapperIcon(const std::optional<std::filesystem::path>& chosen,
            const std::optional<AppBundle>& target, const std::optional<IconLabel>& label);

/// Returns the state of the target's icon file, as `fileState` does; empty if it has none.
[[nodiscard]] std::string targetIconState(const AppBundle& target);

/// Returns whether there is a label with anything to draw.
[[nodiscard]] bool isVisible(const std::optional<IconLabel>& label);

/// Writes the icon to `destination`, with the label if that can be drawn. Throws `PlatformError`.
void installIcon(const WrapperIcon& icon, const std::optional<IconLabel>& label,
                 const std::filesystem::path& destination);

} // namespace quorvel
