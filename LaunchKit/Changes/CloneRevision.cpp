#include "LaunchKit/Changes/CloneRevision.h"

#include "LaunchKit/Changes/ClonesLock.h"
#include "LaunchKit/Homes/HomeLock.h"
#include "LaunchKit/InstanceRegistry.h"
#include "LaunchKit/Menu/MenuEntries.h"
#include "LaunchKit/Targets/AppEngine.h"
#include "LaunchKit/Targets/AppIcon.h"
#include "Platform/files/ResolvedPath.h"

#include <utility>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

// Returns the drawing that shows the same as the clone's icon, if there is one.
std::optional<fs::path> drawingFor(const InstanceRecord& record) {
    const auto notes = WrapperNotes::read(record.bundleURL);
    if (record.config.kind != ShortcutKind::app || record.config.iconLabel || !notes ||
        notes->icon != IconSource::target ||
        notes->writtenIcon != fileHash(record.iconURL().value_or(""))) {
        return std::nullopt;
    }
    auto icon = appIconFile(record.config.targetAppURL());
    return icon && icon->extension() == ".svg" ? icon : std::nullopt;
}

} // namespace

fs::path realWrapper(const fs::path& wrapper) {
    const auto path = resolvedPath(wrapper);
    return path ? fs::path(*path) : wrapper;
}

// The clone is changed where it is, not the link that leads to it.
CloneRevision::CloneRevision(const fs::path& wrapper) : CloneRevision(wrapper, lockClones) {}

CloneRevision::CloneRevision(const fs::path& wrapper, const Lock& lock)
    : wrapper_(realWrapper(wrapper)),
      lock_(lock(wrapper_.parent_path())),
      old_(wrapper_) {}

CloneSettings completedSettings(const WrapperRevision& wrapper, CloneSettings settings) {
    const InstanceConfig& old = wrapper.settings().config;
    InstanceConfig& config = settings.config;
    config.displayName = old.displayName;
    config.bundleId = old.bundleId;
    config.kind = old.kind;
    config.targetAppPath = old.targetAppPath;
    config.instanceHome = old.instanceHome;
    if (settings.arguments == ArgumentSource::engine && wrapper.target() &&
        (settings.restoresArguments || !wrapper.hasUsersArguments())) {
        // An application that is being updated may not show its engine. Without its arguments, the
        // clone would open an empty profile.
        auto arguments = dataDirArgs(detectEngine(*wrapper.target()));
        if (!arguments.empty() || settings.restoresArguments) {
            config.extraArgs = std::move(arguments);
        }
    }
    return settings;
}

ChangedClone CloneRevision::replace(const WrapperRevision::Changes& changes,
                                    PublishedMenu* menu) const {
    if (!old_.isChangedBy(changes)) {
        return {.record = {wrapper_, old_.settings().config}};
    }
    StagedChange change(wrapper_.parent_path());
    const std::string name = wrapper_.filename();
    std::vector<std::string> kept = old_.stage(change, name, changes);
    change.publish(name, name);
    return published(wrapper_, std::move(kept), menu);
}

ChangedClone published(const fs::path& wrapper, std::vector<std::string> kept,
                       PublishedMenu* menu) {
    ChangedClone changed{.isChanged = true, .kept = std::move(kept)};
    auto record = InstanceRegistry().record(wrapper);
    if (!record) {
        throw Error("The clone at " + wrapper.string() + " can’t be read back.");
    }
    changed.record = std::move(*record);
    changed.isRunning = isHomeInUse(changed.record.config);
    try {
        const auto drawing = drawingFor(changed.record);
        menu == nullptr ? publishInMenu(changed.record, drawing)
                        : publishInMenu(changed.record, drawing, *menu);
    } catch (const std::exception& error) {
        changed.warnings.push_back(
            "“" + changed.record.config.displayName +
            "” was changed, but its entry in the menu couldn’t be: " + error.what());
    }
    return changed;
}

} // namespace quorvel
