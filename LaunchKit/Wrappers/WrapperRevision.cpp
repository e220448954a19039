#include "LaunchKit/Wrappers/WrapperRevision.h"

#include "Base/BundleLayout.h"
#include "Base/PathText.h"
#include "LaunchKit/Launching/HelperProgram.h"
#include "LaunchKit/Launching/StatusItemStart.h"
#include "LaunchKit/RunnerLocator.h"
#include "LaunchKit/Targets/AppIcon.h"
#include "LaunchKit/WrapperGenerator.h"
#include "LaunchKit/Wrappers/WrapperLayout.h"
#include "LaunchKit/Wrappers/WrapperPropertyList.h"
#include "LaunchKit/Wrappers/WrapperWriting.h"
#include "Platform/copying/FolderCopy.h"
#include "Platform/files/FileReading.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/Folder.h"
#include "Platform/files/ItemRelation.h"
#include "Platform/files/PlatformError.h"
#include "Platform/files/PropertyListFile.h"
#include "Platform/removal/ItemRemoval.h"

#include <utility>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

constexpr const char* hidingKey = "LSUIElement";

// Without notes, only the property list says it.
bool hidesIcon(const PropertyListDictionary& list, const InstanceConfig& config) {
    const auto value = list.find(hidingKey);
    return value != list.end() && value->second.boolean().value_or(false) &&
           !config.infoPlistOverrides.contains(hidingKey);
}

PropertyListDictionary listFor(const CloneSettings& settings, bool hasIcon) {
    WrapperGenerator::Options options;
    options.config = settings.config;
    options.hideWrapperIcon = settings.hidesIcon;
    return WrapperPropertyList::infoPlist(
        options, hasIcon ? std::optional<std::string>(wrapperIconName) : std::nullopt);
}

// The replaced wrapper is removed afterwards, so that must be possible.
void requireRemovable(const fs::path& wrapper) {
    try {
        if (const auto old = ItemRemoval::of(wrapper)) {
            old->refuseMounts();
            old->refuseClosedFolders();
        }
    } catch (const PlatformError& error) {
        throw Error("The clone can’t be changed, because its old wrapper couldn’t be removed "
                    "afterwards: " +
                    error.description());
    }
}

// What is written into the copy must not end up where a link leads.
void refuseLinks(const fs::path& copy) {
    for (const std::string& item :
         {contentsOf(""), executablesOf(""), resourcesOf(""), frameworksOf(""), helpersOf(""),
          configOf(""), infoPlistOf(""), contentsOf("") + "/" + std::string(BundleItem::pkgInfo),
          notesOf("")}) {
        if (isSymbolicLink(copy.string() + item)) {
            throw Error("“" + item.substr(1) +
                        "” in the clone is a symbolic link, so the clone can’t be changed. "
                        "Replace the link with what it leads to first.");
        }
    }
}

void copyWrapper(const fs::path& wrapper, const fs::path& copy, bool leavesRunnerOut) {
    requireRemovable(wrapper);
    createPrivateFolder(copy);
    const auto folder = Folder::open(copy);
    if (!folder) {
        throw PlatformError::fromErrno(wrapper, "copied");
    }
    FolderCopyOptions options;
    if (leavesRunnerOut) {
        const std::string runner = runnerOf("").substr(1);
        options.excludes = [runner](const CopiedItem& item) { return item.path == runner; };
    }
    (void)FolderCopy(wrapper, std::move(options)).copyInto(folder->descriptor());
    refuseLinks(copy);
}

// Returns the runner from beside which the wrapper gets new parts; std::nullopt if it gets none. A
// clone that keeps its own runner may lack the program for the menu bar.
std::optional<fs::path> runnerWithParts(const fs::path& wrapper,
                                        const WrapperRevision::Changes& changes) {
    if (!changes.isSelfContained || changes.settings.runner) {
        return changes.isSelfContained ? changes.settings.runner : std::nullopt;
    }
    return needsStatusItem(changes.settings.config) && !itemExists(statusItemOf(wrapper))
               ? RunnerLocator::locate(ApplicationFolders::current())
               : std::nullopt;
}

bool isOtherThan(const std::optional<fs::path>& current, const std::string& file) {
    constexpr std::size_t largest = std::size_t{256} << 20U;
    const auto bytes = current ? readFile(*current, largest) : std::nullopt;
    return bytes && !hasContents(file, *bytes);
}

std::string textOf(const std::optional<IconLabel>& label) {
    return isVisible(label) ? label->text + "\n" + label->colorHex + "\n" +
                                  std::string(rawString(label->position))
                            : std::string();
}

} // namespace

struct WrapperRevision::IconPlan {
    bool keeps = true;
    std::optional<WrapperIcon> icon{};
    IconSource source = IconSource::chosen;
    bool looked = false; ///< at the target's icon
};

WrapperRevision::WrapperRevision(fs::path wrapper) : wrapper_(std::move(wrapper)) {
    auto config = InstanceConfig::read(configOf(wrapper_));
    if (!config) {
        throw Error("The clone at " + wrapper_.string() + " is not there any more.");
    }
    if (ComparedItem(wrapper_).relationTo(config->resolvedHome()) != Relation::unrelated) {
        throw Error("The data folder of “" + config->displayName +
                    "” is inside the clone itself, so the clone can’t be changed.");
    }
    settings_.config = std::move(*config);
    notes_ = WrapperNotes::read(wrapper_);
    list_ = readPropertyList(infoPlistOf(wrapper_));
    settings_.hidesIcon =
        notes_ ? notes_->hidesIcon : list_ && ::quorvel::hidesIcon(*list_, settings_.config);
    settings_.arguments = notes_ ? notes_->arguments : ArgumentSource::typed;
    if (settings_.config.kind == ShortcutKind::app) {
        target_ = AppBundle::read(settings_.config.targetAppURL(), noEntitlements);
    }
}

const std::string& WrapperRevision::iconHash() const {
    return iconHash_ ? *iconHash_ : iconHash_.emplace(fileHash(iconOf(wrapper_)));
}

bool WrapperRevision::isUsersIcon() const {
    return notes_ && notes_->writtenIcon != iconHash();
}

bool WrapperRevision::hasOldTargetIcon() const {
    if (!notes_ || notes_->icon != IconSource::target || !target_ || isUsersIcon()) {
        return false;
    }
    const std::string state = targetIconState(*target_);
    return !state.empty() && state != notes_->targetIcon;
}

bool WrapperRevision::hasOldParts(const fs::path& runner) const {
    WrapperContents current;
    addParts(current, settings_.config, runner);
    return isOtherThan(current.webHost, webHostOf(wrapper_)) ||
           isOtherThan(current.statusItem, statusItemOf(wrapper_));
}

bool WrapperRevision::hasOldHelpers(const fs::path& runner) const {
    return notes_ && notes_->helpers != unusualHelperFolder(runner);
}

bool WrapperRevision::hasUsersArguments() const {
    return notes_ && notes_->arguments == ArgumentSource::engine &&
           notes_->writtenArguments != argumentsHash(settings_.config.extraArgs);
}

bool WrapperRevision::keepsUsersArguments(const CloneSettings& settings) const {
    return hasUsersArguments() && settings.arguments == ArgumentSource::engine &&
           !settings.restoresArguments;
}

bool WrapperRevision::isIconOfTarget(const StagedChange& change) const {
    if (notes_) {
        return notes_->icon == IconSource::target;
    }
    return !itemExists(iconOf(wrapper_)) || isTargetsIcon(change);
}

// Whether the icon is the target's with the clone's label.
bool WrapperRevision::isTargetsIcon(const StagedChange& change) const {
    const auto& label = settings_.config.iconLabel;
    const auto icon = wrapperIcon(std::nullopt, target_, label);
    if (!icon) {
        return false;
    }
    const fs::path drawn = change.path() / "compared-icon";
    installIcon(*icon, label, drawn);
    return fileHash(drawn) == iconHash();
}

WrapperRevision::IconPlan WrapperRevision::iconPlan(const StagedChange& change,
                                                    const Changes& changes, Kept& kept) const {
    const CloneSettings& wanted = changes.settings;
    switch (wanted.icon) {
    case IconChoice::file:
        if (!itemExists(wanted.iconFile)) {
            throw PlatformError(std::make_error_code(std::errc::no_such_file_or_directory),
                                wanted.iconFile, "read");
        }
        return {false, WrapperIcon{wanted.iconFile, IconSource::chosen}, IconSource::chosen};
    case IconChoice::target:
        return {false, wrapperIcon(std::nullopt, target_, wanted.config.iconLabel),
                IconSource::target, true};
    case IconChoice::keep:
        break;
    }
    return keptIconPlan(change, changes, kept);
}

WrapperRevision::IconPlan WrapperRevision::keptIconPlan(const StagedChange& change,
                                                        const Changes& changes, Kept& kept) const {
    const auto& label = changes.settings.config.iconLabel;
    const bool relabels = textOf(label) != textOf(settings_.config.iconLabel);
    const bool fromTarget = isIconOfTarget(change);
    IconPlan keeping{true, {}, fromTarget ? IconSource::target : IconSource::chosen};
    if (!relabels && !(changes.refreshesIcon && hasOldTargetIcon())) {
        return keeping;
    }
    // The picture below a label is known only where it was kept.
    const bool isLost = !notes_ && !fromTarget && isVisible(settings_.config.iconLabel);
    if (isUsersIcon() || isLost) {
        kept.emplace_back("the icon");
        return keeping;
    }
    if (!fromTarget) {
        const fs::path chosen =
            itemExists(chosenIconOf(wrapper_)) ? chosenIconOf(wrapper_) : iconOf(wrapper_);
        return {false, WrapperIcon{chosen, IconSource::chosen}, IconSource::chosen};
    }
    auto icon = wrapperIcon(std::nullopt, target_, label);
    // If the target is gone, the clone keeps its icon.
    keeping.looked = true;
    return icon || !itemExists(iconOf(wrapper_))
               ? IconPlan{false, std::move(icon), IconSource::target, true}
               : keeping;
}

std::string WrapperRevision::propertyList(const CloneSettings& settings, bool hasIcon,
                                          Kept& kept) const {
    PropertyListDictionary list = listFor(settings, hasIcon);
    const bool isOurs = notes_ && notes_->writtenList == fileHash(infoPlistOf(wrapper_));
    if (list_ && !isOurs) {
        const auto written = listFor(settings_, list_->contains("CFBundleIconFile"));
        list = WrapperPropertyList::withUsersChanges(std::move(list), written, *list_, kept);
    }
    return PropertyList::xml(list);
}

WrapperNotes WrapperRevision::newNotes(const CloneSettings& settings, const IconPlan& plan) const {
    WrapperNotes notes = notes_.value_or(WrapperNotes());
    notes.version = QUORVEL_VERSION;
    notes.arguments = settings.arguments;
    notes.hidesIcon = settings.hidesIcon;
    notes.icon = plan.source;
    if (!keepsUsersArguments(settings)) {
        notes.writtenArguments = argumentsHash(settings.config.extraArgs);
    }
    // Also if it can't be drawn, or each refresh would try that again.
    if (plan.looked || !notes_) {
        const bool isTargets = plan.source == IconSource::target;
        notes.targetIcon = isTargets && target_ ? targetIconState(*target_) : "";
    }
    if (plan.keeps && notes_) {
        return notes;
    }
    if (plan.source == IconSource::chosen) {
        notes.targetIcon.clear();
    }
    // Without its hash, an icon is never drawn again: a label may be on it already.
    const bool isDrawn = plan.source == IconSource::chosen && isVisible(settings_.config.iconLabel);
    notes.writtenIcon = isDrawn ? "unknown" : iconHash();
    return notes;
}

std::vector<std::string> WrapperRevision::stage(const StagedChange& change, const std::string& name,
                                                const Changes& changes) const {
    Kept kept;
    const IconPlan plan = iconPlan(change, changes, kept);
    WrapperContents contents;
    contents.config = changes.settings.config.json();
    WrapperPropertyList::requireWritableTexts(changes.settings.config);
    contents.runner = changes.settings.runner;
    if (const auto runner = runnerWithParts(wrapper_, changes)) {
        addParts(contents, changes.settings.config, *runner);
    }
    contents.keepsIcon = plan.keeps;
    contents.icon = plan.icon;
    contents.label = changes.settings.config.iconLabel;
    contents.notes = newNotes(changes.settings, plan);
    const bool hasIcon = plan.keeps ? itemExists(iconOf(wrapper_)) : plan.icon.has_value();
    Kept entries;
    contents.list = propertyList(changes.settings, hasIcon, entries);
    contents.hasUsersEntries = !entries.empty();
    if (keepsUsersArguments(changes.settings)) {
        kept.emplace_back("the arguments for the app");
    }
    kept.insert(kept.end(), entries.begin(), entries.end());
    copyWrapper(wrapper_, change.path() / name, contents.runner.has_value());
    writeWrapper(change.path() / name, contents);
    return kept;
}

bool WrapperRevision::isChangedBy(const Changes& changes) const {
    const CloneSettings& wanted = changes.settings;
    return wanted.runner || wanted.icon != IconChoice::keep ||
           wanted.hidesIcon != settings_.hidesIcon || wanted.arguments != settings_.arguments ||
           wanted.config.json() != settings_.config.json() ||
           (wanted.restoresArguments && hasUsersArguments()) ||
           (changes.refreshesIcon && hasOldTargetIcon());
}

} // namespace quorvel
