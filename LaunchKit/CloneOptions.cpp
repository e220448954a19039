#include "LaunchKit/CloneOptions.h"

#include <algorithm>
#include <iterator>

namespace quorvel {

std::vector<CloneSwitch> shownSwitches(ShortcutKind kind, const CloneOptions& options) {
    std::vector<CloneSwitch> shown;
    std::copy_if(cloneSwitches.begin(), cloneSwitches.end(), std::back_inserter(shown),
                 [&](const CloneSwitch& each) {
                     const bool applies = !each.appsOnly || kind == ShortcutKind::app;
                     return applies && (each.valueIn(options) || each.defaultValue());
                 });
    return shown;
}

} // namespace quorvel
