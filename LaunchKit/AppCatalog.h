#pragma once

#include "LaunchKit/AppBundle.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quorvel {

/// An application that can be cloned.
struct InstalledApp {
    std::filesystem::path url{}; ///< the bundle or desktop entry, as found
    std::string name{};          ///< the bundle's name without ".app", or the entry's
    std::string bundleId{};
    /// Of a desktop entry, its icon as the scan found it: a PNG or SVG file.
    std::optional<std::filesystem::path> themeIcon{};

    [[nodiscard]] std::string id() const { return url.string(); }
    /// Returns the app's icon file: an icon container, or for a desktop entry a PNG or SVG file;
    /// `std::nullopt` if the app names none that exists.
    [[nodiscard]] std::optional<std::filesystem::path> iconURL() const;

    bool operator==(const InstalledApp& other) const {
        return url == other.url && name == other.name && bundleId == other.bundleId;
    }
};

namespace AppCatalog {

/// Returns "/Applications", "/Applications/Utilities", "~/Applications" and "/System/Applications".
[[nodiscard]] std::vector<std::filesystem::path> defaultSearchDirs();

/// Returns the applications directly in the folders, without the clones' wrappers, each identifier
/// once (the first one found), in the order of `sortedByName`. Unreadable ones are left out. Blocks
/// while the code-signing tool runs once for each bundle; several run in parallel, and
/// `entitlements` is called from several threads.
[[nodiscard]] std::vector<InstalledApp>
scan(const std::vector<std::filesystem::path>& dirs,
     const EntitlementReader& entitlements = codeSigningTool());

/// Returns the same for `defaultSearchDirs()`, followed on Linux by `installedApplications()`.
[[nodiscard]] std::vector<InstalledApp>
scan(const EntitlementReader& entitlements = codeSigningTool());

} // namespace AppCatalog
} // namespace quorvel

template<>
struct std::hash<quorvel::InstalledApp> {
    std::size_t operator()(const quorvel::InstalledApp& app) const noexcept;
};
