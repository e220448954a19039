#pragma once

#include "LaunchKit/Records/EnumNames.h"
#include "LaunchKit/Targets/DesktopTarget.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quorvel {

/// Returns what the code-signing tool prints about a bundle's entitlements; empty if it can't be
/// run.
using EntitlementReader = std::function<std::string(const std::filesystem::path& bundle)>;

/// Returns a reader that runs `tool`, by default the system's own, and waits for it.
[[nodiscard]] EntitlementReader codeSigningTool(std::filesystem::path tool = "/usr/bin/codesign");

/// An `EntitlementReader` that returns an empty text without running the code-signing tool, for
/// callers that don't need the sandbox flag.
[[nodiscard]] std::string noEntitlements(const std::filesystem::path& bundle);

/// The form that an application has on disk.
enum class AppFormat { bundle, desktopEntry, appImage };

template<>
inline constexpr auto enumNames<AppFormat> = namesOfAllCases<AppFormat>({
    {AppFormat::bundle, "bundle"},
    {AppFormat::desktopEntry, "desktop-entry"},
    {AppFormat::appImage, "appimage"},
});

/// Facts about an application, read once.
struct AppBundle {
    std::filesystem::path url{}; ///< as given
    std::string bundleId{};      ///< of a desktop entry, its id: "org.example.App.desktop"
    std::string executableName{};
    bool sandboxed = false; ///< its data can't be kept apart; also true for a Snap
    bool prohibitsMultipleInstances = false;
    AppFormat format = AppFormat::bundle;
    std::vector<std::string> arguments{};   ///< a desktop entry's own, with their field codes
    std::optional<DesktopTarget> desktop{}; ///< absent for a bundle

    /// Reads the bundle, and waits for the tool, which prints its entitlements. What has no
    /// readable `Info.plist` is read without the tool: as a desktop entry if it is a file named
    /// *.desktop, or as an AppImage; both only on Linux, and only if they can be started. Returns
    /// `std::nullopt` for anything else.
    [[nodiscard]] static std::optional<AppBundle>
    read(const std::filesystem::path& appURL,
         const EntitlementReader& entitlements = codeSigningTool());

    /// Returns the main executable; of a desktop entry, the real file that links and scripts lead
    /// to.
    [[nodiscard]] std::filesystem::path executableURL() const;

    /// Returns why a clone of it could not work, as the end of a sentence; `std::nullopt` if it
    /// can.
    [[nodiscard]] std::optional<std::string> obstacle() const;
};

/// Returns what to tell the user about a file or folder that `AppBundle::read` can't read: the
/// reason for a desktop entry or an AppImage, for anything else `otherwise` followed by its path.
[[nodiscard]] std::string unreadableAppText(const std::filesystem::path& appURL,
                                            const std::string& otherwise);

/// Returns the icon file that the bundle's property list names; `std::nullopt` if it names none or
/// the file doesn't exist.
[[nodiscard]] std::optional<std::filesystem::path>
bundleIconFile(const std::filesystem::path& bundle);

} // namespace quorvel
