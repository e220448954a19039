#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace quorvel {

/// What the code-signing tool prints about a bundle's entitlements; empty when it can't be run.
using EntitlementReader = std::function<std::string(const std::filesystem::path& bundle)>;

/// Runs the tool (the system's own by default) and waits for it.
[[nodiscard]] EntitlementReader codeSigningTool(std::filesystem::path tool = "/usr/bin/codesign");

/// Runs nothing and says nothing: for those who don't ask about the sandbox, and must not wait.
[[nodiscard]] std::string noEntitlements(const std::filesystem::path& bundle);

/// Facts about an application bundle, read once. Empty where the bundle is not readable.
struct AppBundle {
    std::filesystem::path url{}; ///< as given
    std::string bundleId{};
    std::string executableName{};
    bool sandboxed = false;
    bool prohibitsMultipleInstances = false;

    /// Nothing when `Contents/Info.plist` can't be read as a dictionary; the tool is not run then.
    /// Blocks until the tool has ended.
    [[nodiscard]] static std::optional<AppBundle>
    read(const std::filesystem::path& appURL,
         const EntitlementReader& entitlements = codeSigningTool());

    [[nodiscard]] std::filesystem::path executableURL() const;
};

} // namespace quorvel
