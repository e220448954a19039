#include "LaunchKit/WrapperGenerator.h"

#include "Platform/files/FileCopy.h"
#include "Platform/files/FileWriting.h"
#include "Platform/files/PlatformError.h"
#include "Base/PathText.h"
#include "Base/Text.h"
#include "LaunchKit/CloneDeletion.h"
#include "LaunchKit/IconComposer.h"
#include "LaunchKit/InstanceRegistry.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/PropertyListFile.h"

namespace quorvel {
namespace fs = std::filesystem;
namespace {

std::optional<std::string> targetIconFile(const AppBundle& target) {
    const auto info =
        readPropertyList(target.url / "Contents" / "Info.plist", {"CFBundleIconFile"});
    return info ? PropertyList::stringFor(*info, "CFBundleIconFile") : std::nullopt;
}

std::optional<fs::path> iconSource(const WrapperGenerator::Options& options,
                                   const std::optional<AppBundle>& target) {
    if (options.customIcon && itemExists(*options.customIcon)) {
        return options.customIcon;
    }
    std::optional<std::string> name = target ? targetIconFile(*target) : std::nullopt;
    if (!name) {
        return std::nullopt;
    }
    if (!name->ends_with(".icns")) {
        name->append(".icns");
    }
    fs::path icon = joinAsText(target->url / "Contents" / "Resources", *name);
    return itemExists(icon) ? std::optional(std::move(icon)) : std::nullopt;
}

// False when there is nothing to draw, or when that fails.
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

void installIcon(const fs::path& source, const std::optional<IconLabel>& label,
                 const fs::path& resources) {
    const fs::path destination = resources / "AppIcon.icns";
    if (!installBadgedIcon(source, label, destination)) {
        copyFile(source, destination);
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

} // namespace

WrapperGenerator::GenError
WrapperGenerator::GenError::runnerMissing(const std::filesystem::path& runner) {
    return {Case::runnerMissing, "Runner binary not found: ", runner};
}

WrapperGenerator::GenError
WrapperGenerator::GenError::badTarget(const std::filesystem::path& target) {
    return {Case::badTarget, "Not a readable target .app: ", target};
}

fs::path wrapperURL(const fs::path& directory, std::string_view displayName) {
    return joinAsText(directory, std::string(displayName) + ".app");
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
    // Texts that can't be written are found before an older wrapper is touched.
    const std::string json = options.config.json();
    requireWritableTexts(options.config);
    fs::path wrapper = wrapperURL(directory, options.config.displayName);
    if (itemOrLinkExists(wrapper)) {
        removeWrapper(wrapper);
    }
    // Only now, since an icon of the older wrapper is gone with it.
    const std::optional<fs::path> icon = iconSource(options, target);
    const std::string info = PropertyList::xml(
        infoPlist(options, icon ? std::optional<std::string>("AppIcon") : std::nullopt));
    const fs::path contents = wrapper / "Contents";
    const fs::path resources = contents / "Resources";
    createDirectories(wrapper); // by itself, so that an error names it
    createDirectories(contents / "MacOS");
    createDirectories(resources);
    installRunner(options.runnerBinary, contents / "MacOS" / "runner");
    writeFile(instanceConfigFile(wrapper), json);
    if (icon) {
        installIcon(*icon, options.config.iconLabel, resources);
    }
    writeFile(contents / "Info.plist", info);
    writeFile(contents / "PkgInfo", "APPL????");
    return wrapper;
}

} // namespace quorvel
