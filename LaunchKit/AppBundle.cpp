#include "LaunchKit/AppBundle.h"

#include "Base/BundleLayout.h"
#include "Base/BundleName.h"
#include "Base/Utf8.h"
#include "Platform/entries/EntryFolders.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/PlatformError.h"
#include "Platform/files/PropertyListFile.h"
#include "Platform/processes/Process.h"

namespace quorvel {
namespace fs = std::filesystem;
namespace {

// Entitlements take a few kilobytes; anything longer is not an entitlements list.
constexpr std::size_t maximumEntitlements = std::size_t{4} << 20U;

// The key alone counts, not its value: a bundle that has it was built for the sandbox.
bool isSandboxed(const std::string& entitlements) {
    return isUtf8(entitlements) &&
           entitlements.find("com.apple.security.app-sandbox") != std::string::npos;
}

bool isNamedAsEntry(const fs::path& app) {
    std::error_code ignored;
    return app.native().ends_with(".desktop") && !fs::is_directory(app, ignored);
}

AppBundle describing(DesktopTarget target, AppFormat format, std::string id) {
    AppBundle app;
    app.url = target.file;
    app.bundleId = std::move(id);
    app.executableName = target.program.executable.filename().string();
    app.sandboxed = target.program.packaging == ResolvedProgram::Packaging::snap;
    app.format = format;
    for (const ExecLine::Word& word : target.line.words) {
        app.arguments.push_back(word.text);
    }
    app.desktop = std::move(target);
    return app;
}

// Returns std::nullopt if it is neither an entry nor an AppImage; throws `PlatformError` if it is
// one that can't be started.
std::optional<AppBundle> readEntryOrImage(const fs::path& app) {
    if (isNamedAsEntry(app)) {
        return describing(DesktopTarget::readEntry(app), AppFormat::desktopEntry,
                          desktopFileId(app));
    }
    if (isAppImage(app)) {
        return describing(DesktopTarget::readAppImage(app), AppFormat::appImage,
                          bundleFallbackName(app));
    }
    return std::nullopt;
}

std::optional<AppBundle> readEntryOrImageIfUsable(const fs::path& app) {
    try {
        return readEntryOrImage(app);
    } catch (const PlatformError&) {
        return std::nullopt;
    }
}

} // namespace

EntitlementReader codeSigningTool(std::filesystem::path tool) {
    return [tool = std::move(tool)](const std::filesystem::path& bundle) -> std::string {
        // Starting a missing program costs more than reading the bundle.
        if (!isExecutableFile(tool)) {
            return {};
        }
        Process::Options options;
        options.executable = tool;
        options.arguments = {"-d", "--entitlements", ":-", "--xml", bundle.string()};
        try {
            return Process::capture(std::move(options), maximumEntitlements);
        } catch (const PlatformError&) {
            return {};
        }
    };
}

std::string noEntitlements(const std::filesystem::path& /*bundle*/) {
    return {};
}

std::optional<AppBundle> AppBundle::read(const std::filesystem::path& appURL,
                                         const EntitlementReader& entitlements) {
    const auto info =
        readPropertyList(infoPlistOf(appURL), {"CFBundleIdentifier", "CFBundleExecutable",
                                               "LSMultipleInstancesProhibited"});
    if (!info) {
        return readEntryOrImageIfUsable(appURL);
    }
    AppBundle bundle;
    bundle.url = appURL;
    const auto textOrName = [&](const char* key) {
        auto text = PropertyList::stringFor(*info, key);
        return text ? std::move(*text) : bundleFallbackName(appURL);
    };
    bundle.bundleId = textOrName("CFBundleIdentifier");
    bundle.executableName = textOrName("CFBundleExecutable");
    const auto prohibits = info->find("LSMultipleInstancesProhibited");
    bundle.prohibitsMultipleInstances =
        prohibits != info->end() && prohibits->second.boolean().value_or(false);
    bundle.sandboxed = isSandboxed(entitlements(appURL));
    return bundle;
}

std::filesystem::path AppBundle::executableURL() const {
    return desktop ? desktop->program.executable : fs::path(executableOf(url, executableName));
}

std::optional<std::string> AppBundle::obstacle() const {
    return desktop ? desktop->obstacle() : std::nullopt;
}

std::string unreadableAppText(const fs::path& appURL, const std::string& otherwise) {
    try {
        (void)readEntryOrImage(appURL);
    } catch (const PlatformError& error) {
        return error.description();
    }
    return otherwise + appURL.string();
}

std::optional<std::filesystem::path> bundleIconFile(const std::filesystem::path& bundle) {
    constexpr const char* key = "CFBundleIconFile";
    const auto info = readPropertyList(infoPlistOf(bundle), {key});
    auto name = info ? PropertyList::stringFor(*info, key) : std::nullopt;
    if (!name) {
        return std::nullopt;
    }
    if (!name->ends_with(".icns")) {
        *name += ".icns";
    }
    std::filesystem::path icon = resourceOf(bundle, *name);
    return itemExists(icon) ? std::optional(std::move(icon)) : std::nullopt;
}

} // namespace quorvel
