#include "LaunchKit/WrapperGenerator.h"

#include "Base/BundleLayout.h"
#include "Base/PathText.h"
#include "Base/Text.h"
#include "LaunchKit/AppIcon.h"
#include "LaunchKit/CloneDeletion.h"
#include "LaunchKit/IconComposer.h"
#include "LaunchKit/WrapperLayout.h"
#include "LaunchKit/WrapperPropertyList.h"
#include "Platform/files/FileCopy.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/FileWriting.h"
#include "Platform/files/PlatformError.h"

namespace quorvel {
namespace fs = std::filesystem;
namespace {

struct WrapperIcon {
    fs::path source{};
    std::string converted{}; ///< of a source that is not an icon container, with its label
};

std::optional<WrapperIcon> iconOfEntry(const AppBundle& target,
                                       const std::optional<IconLabel>& label) {
    const auto file = appIconFile(target);
    try {
        return file ? std::optional(WrapperIcon{*file, IconComposer::converted(*file, label)})
                    : std::nullopt;
    } catch (const IconComposer::ComposeError&) {
        return std::nullopt; // a clone without an icon is better than none
    }
}

std::optional<WrapperIcon> wrapperIcon(const WrapperGenerator::Options& options,
                                       const std::optional<AppBundle>& target) {
    if (options.customIcon && itemExists(*options.customIcon)) {
        return WrapperIcon{*options.customIcon};
    }
    if (target && target->desktop) {
        return iconOfEntry(*target, options.config.iconLabel);
    }
    const auto file = target ? appIconFile(*target) : std::nullopt;
    return file ? std::optional(WrapperIcon{*file}) : std::nullopt;
}

// Returns false if there is nothing to draw, or if drawing fails.
bool installBadgedIcon(const fs::path& source, const std::optional<IconLabel>& label,
                       const fs::path& destination) {
    if (!label || Text::trimmingWhitespace(label->text).empty()) {
        return false;
    }
    try {
        IconComposer::compose(source, *label, destination);
        return true;
    } catch (const IconComposer::ComposeError&) {
        return false;
    }
}

void installIcon(const WrapperIcon& icon, const std::optional<IconLabel>& label,
                 const fs::path& destination) {
    if (!icon.converted.empty()) {
        writeFile(destination, icon.converted);
    } else if (!installBadgedIcon(icon.source, label, destination)) {
        copyFile(icon.source, destination);
    }
}

void installRunner(const fs::path& runner, const fs::path& destination) {
    copyFile(runner, destination);
    std::error_code code;
    fs::permissions(destination, fs::perms{0755}, code);
    if (code) {
        throw PlatformError(code, destination, "made executable");
    }
}

// A missing module is no reason not to make the clone: when it is opened, it says what is missing.
void installWebHost(const WrapperGenerator::Options& options, const fs::path& wrapper) {
    const fs::path module = options.runnerBinary.parent_path() / webHostModule;
    if (options.config.kind == ShortcutKind::web && options.containsWebHost && itemExists(module)) {
        createDirectories(frameworksOf(wrapper));
        copyFile(module, webHostOf(wrapper));
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
    const std::string json = options.config.json();
    WrapperPropertyList::requireWritableTexts(options.config);
    fs::path wrapper = wrapperPath(directory, options.config.displayName);
    if (options.beforeWriting) {
        options.beforeWriting(wrapper);
    }
    if (itemOrLinkExists(wrapper)) {
        removeWrapper(wrapper);
    }
    // Only now: an icon inside the older wrapper has been removed with it.
    const std::optional<WrapperIcon> icon = wrapperIcon(options, target);
    const std::string info = PropertyList::xml(WrapperPropertyList::infoPlist(
        options, icon ? std::optional<std::string>(wrapperIconName) : std::nullopt));
    createDirectories(wrapper); // separately, so that an error names it
    createDirectories(executablesOf(wrapper));
    createDirectories(resourcesOf(wrapper));
    installRunner(options.runnerBinary, runnerOf(wrapper));
    installWebHost(options, wrapper);
    writeFile(configOf(wrapper), json);
    if (icon) {
        installIcon(*icon, options.config.iconLabel, iconOf(wrapper));
    }
    writeFile(infoPlistOf(wrapper), info);
    writeFile(joinAsText(contentsOf(wrapper), BundleItem::pkgInfo), "APPL????");
    return wrapper;
}

} // namespace quorvel
