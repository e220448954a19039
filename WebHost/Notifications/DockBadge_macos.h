#pragma once

#import <AppKit/AppKit.h>

#include <optional>
#include <string>

namespace quorvel {

/// The count and the progress on the clone's icon in the Dock. They last as long as the process.
class DockBadge {
public:
    /// Shows a label; std::nullopt for none.
    void setLabel(const std::optional<std::string>& label);
    /// Shows a progress from 0 to 1; std::nullopt for none.
    void setProgress(std::optional<double> progress);

private:
    NSProgressIndicator* bar_ = nil; ///< on the icon, while there is a progress
};

} // namespace quorvel
