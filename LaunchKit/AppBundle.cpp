#include "LaunchKit/AppBundle.h"

#include "Base/BundleLayout.h"
#include "Base/BundleName.h"
#include "Base/Utf8.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/PlatformError.h"
#include "Platform/files/PropertyListFile.h"
#include "Platform/processes/Process.h"

namespace quorvel {
namespace {

// Entitlements take a few kilobytes; anything longer is not an entitlements list.
constexpr std::size_t maximumEntitlements = std::size_t{4} << 20U;

// The key alone counts, not its value: a bundle that has it was built for the sandbox.
bool isSandboxed(const std::string& entitlements) {
    return isUtf8(entitlements) &&
           entitlements.find("com.apple.security.app-sandbox") != std::string::npos;
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
        return std::nullopt;
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
    return executableOf(url, executableName);
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
