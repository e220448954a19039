#include "LaunchKit/WrapperGenerator.h"

#include "LaunchKit/InstanceRegistry.h"
#include "Platform/FileSystem.h"

namespace quorvel {
namespace fs = std::filesystem;
namespace {

std::optional<std::string> targetIconFile(const AppBundle& target) {
    const auto info = PropertyList::readDictionary(target.url / "Contents" / "Info.plist");
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

// The name for the property list; nothing when there is no icon to install.
std::optional<std::string> installIcon(const WrapperGenerator::Options& options,
                                       const std::optional<AppBundle>& target,
                                       const fs::path& resources) {
    const std::optional<fs::path> source = iconSource(options, target);
    if (!source) {
        return std::nullopt;
    }
    copyFile(*source, resources / "AppIcon.icns");
    return "AppIcon";
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
        target = AppBundle::read(options.config.targetAppURL());
        if (!target) {
            throw GenError::badTarget(options.config.targetAppURL());
        }
    }
    fs::path wrapper = wrapperURL(directory, options.config.displayName);
    if (itemOrLinkExists(wrapper)) {
        removeItem(wrapper);
    }
    const fs::path contents = wrapper / "Contents";
    const fs::path resources = contents / "Resources";
    createDirectories(contents / "MacOS");
    createDirectories(resources);
    installRunner(options.runnerBinary, contents / "MacOS" / "runner");
    writeFile(instanceConfigFile(wrapper), options.config.json());
    const std::optional<std::string> icon = installIcon(options, target, resources);
    writeFile(contents / "Info.plist", PropertyList::xml(infoPlist(options, icon)));
    writeFile(contents / "PkgInfo", "APPL????");
    return wrapper;
}

} // namespace quorvel
