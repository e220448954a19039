#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace quorvel {

/// Returns what the code-signing tool prints about a bundle's entitlements; empty if it can't be
/// run.
using EntitlementReader = std::function<std::string(const std::filesystem::path& bundle)>;

/// Returns a reader that runs `tool`, by default the system's own, and waits for it.
[[nodiscard]] EntitlementReader codeSigningTool(std::filesystem::path tool = "/usr/bin/codesign");

/// An `EntitlementReader` that returns an empty text without running the code-signing tool, for
/// callers that don't need the sandbox flag.
[[nodiscard]] std::string noEntitlements(const std::filesystem::path& bundle);

/// Facts about an application bundle, read once.
struct AppBundle {
    std::filesystem::path url{}; ///< as given
    std::string bundleId{};
    std::string executableName{};
    bool sandboxed = false;
    bool prohibitsMultipleInstances = false;

    /// Returns `std::nullopt` if `Info.plist` can't be read as a dictionary; the tool is not run
    /// then. Blocks until the tool has exited.
    [[nodiscard]] static std::optional<AppBundle>
    read(const std::filesystem::path& appURL,
         const EntitlementReader& entitlements = codeSigningTool());

    [[nodiscard]] std::filesystem::path executableURL() const;
};

/// Returns the icon file that the bundle's property list names; `std::nullopt` if it names none or
/// the file doesn't exist.
[[nodiscard]] std::optional<std::filesystem::path>
bundleIconFile(const std::filesystem::path& bundle);

} // namespace quorvel
