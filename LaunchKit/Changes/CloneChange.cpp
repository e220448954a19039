#include "LaunchKit/Changes/CloneChange.h"

#include "LaunchKit/Changes/CloneRevision.h"

#include <utility>

namespace quorvel {

ChangedClone editClone(const std::filesystem::path& wrapper, const CloneEdit& edit) {
    const CloneRevision clone(wrapper);
    CloneSettings settings = clone.old().settings();
    edit(settings);
    return clone.replace({.settings = completedSettings(clone.old(), std::move(settings))});
}

} // namespace quorvel
