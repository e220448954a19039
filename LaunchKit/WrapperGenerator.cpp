#include "LaunchKit/WrapperGenerator.h"

#include "Base/PathText.h"
#include "LaunchKit/Wrappers/WrapperLayout.h"
#include "LaunchKit/Wrappers/WrapperPropertyList.h"
#include "LaunchKit/Wrappers/WrapperRevision.h"
#include "LaunchKit/Wrappers/WrapperWriting.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/ItemRelation.h"
#include "Platform/files/PlatformError.h"
#include "Platform/removal/ItemRemoval.h"
#include "Platform/staging/StagedChange.h"

namespace quorvel {
namespace fs = std::filesystem;
namespace {

// An icon inside the wrapper that is being replaced is gone with it.
std::optional<fs::path> chosenIcon(const WrapperGenerator::Options& options,
                                   const fs::path& wrapper) {
    const ComparedItem older(wrapper);
    const bool isLost =
        options.customIcon && older.relationTo(*options.customIcon) != Relation::unrelated;
    return isLost ? std::nullopt : options.customIcon;
}

std::optional<WrapperNotes> notesFor(const WrapperGenerator::Options& options,
                                     const std::optional<AppBundle>& target,
                                     const std::optional<WrapperIcon>& icon) {
    if (!options.arguments) {
        return std::nullopt;
    }
    WrapperNotes notes;
    notes.version = QUORVEL_VERSION;
    notes.arguments = *options.arguments;
    notes.hidesIcon = options.hideWrapperIcon;
    notes.icon = icon ? icon->source : IconSource::target;
    // Also if it couldn't be drawn.
    notes.targetIcon =
        notes.icon == IconSource::target && target ? targetIconState(*target) : std::string();
    notes.writtenArguments = argumentsHash(options.config.extraArgs);
    return notes;
}

WrapperContents contentsFor(const WrapperGenerator::Options& options,
                            const std::optional<AppBundle>& target, const fs::path& wrapper) {
    WrapperContents contents;
    contents.runner = options.runnerBinary;
    if (options.isSelfContained) {
        addParts(contents, options.config, options.runnerBinary);
    }
    contents.config = options.config.json();
    contents.label = options.config.iconLabel;
    contents.icon = wrapperIcon(chosenIcon(options, wrapper), target, contents.label);
    contents.list = PropertyList::xml(WrapperPropertyList::infoPlist(
        options, contents.icon ? std::optional<std::string>(wrapperIconName) : std::nullopt));
    contents.notes = notesFor(options, target, contents.icon);
    return contents;
}

void stageCopy(const StagedChange& change, const std::string& name,
               const WrapperGenerator::Options& options) {
    const WrapperRevision original(*options.original);
    WrapperRevision::Changes changes{.settings = original.settings()};
    changes.settings.config = options.config;
    changes.settings.runner = options.runnerBinary;
    changes.isSelfContained = options.isSelfContained;
    (void)original.stage(change, name, changes); // the copy has all of the user's changes
}

// The replaced wrapper is removed afterwards, so that must be possible.
void requireRemovable(const fs::path& wrapper) {
    if (const auto old = ItemRemoval::of(wrapper)) {
        old->refuseMounts();
        old->refuseUnchangeable(configOf("").substr(1));
    }
}

// Begins in the folder of wrappers, which is created if it is missing.
StagedChange changeFor(const fs::path& wrapper) {
    try {
        createDirectories(wrapper.parent_path());
        return StagedChange(wrapper.parent_path());
    } catch (const PlatformError& error) {
        throw PlatformError(error.code(), wrapper, "created");
    }
}

} // namespace

WrapperGenerator::GenError
WrapperGenerator::GenError::runnerMissing(const std::filesystem::path& runner) {
    return {Case::runnerMissing, "Runner binary not found: " + runner.string(), runner};
}

WrapperGenerator::GenError
WrapperGenerator::GenError::badTarget(const std::filesystem::path& target) {
    return {Case::badTarget, unreadableAppText(target, "Not a readable target .app: "), target};
}

fs::path WrapperGenerator::generate(const fs::path& directory, const Options& options) const {
    if (!itemExists(options.runnerBinary)) {
        throw GenError::runnerMissing(options.runnerBinary);
    }
    std::optional<AppBundle> target;
    if (options.config.kind == ShortcutKind::app) {
        target = AppBundle::read(options.config.targetAppURL(), noEntitlements);
        if (!target) {
            throw GenError::badTarget(options.config.targetAppURL());
        }
    }
    // Unwritable texts are found before an older wrapper is touched.
    (void)options.config.json();
    WrapperPropertyList::requireWritableTexts(options.config);
    fs::path wrapper = wrapperPath(directory, options.config.displayName);
    if (options.beforeWriting) {
        options.beforeWriting(wrapper);
    }
    requireRemovable(wrapper);
    StagedChange change = changeFor(wrapper);
    const std::string name = wrapper.filename();
    if (options.original) {
        stageCopy(change, name, options);
    } else {
        writeWrapper(joinAsText(change.path(), name), contentsFor(options, target, wrapper));
    }
    change.publish(name, name);
    return wrapper;
}

} // namespace quorvel
