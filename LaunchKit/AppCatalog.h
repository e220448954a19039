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
    std::filesystem::path url{}; ///< the bundle, as found
    std::string name{};          ///< the folder's name without ".app"
    std::string bundleId{};

    [[nodiscard]] std::string id() const { return url.string(); }
    /// Returns the app's icon file; `std::nullopt` if its property list names none that exists.
    [[nodiscard]] std::optional<std::filesystem::path> iconURL() const;

    bool operator==(const InstalledApp&) const = default;
};

namespace AppCatalog {

/// Returns "/Applications", "/Applications/Utilities", "~/Applications" and "/System/Applications".
[[nodiscard]] std::vector<std::filesystem::path> defaultSearchDirs();

/// Returns the applications directly in the folders, without the clones' wrappers, each identifier
/// once (the first one found), in the order of `sortedByName`. Unreadable ones are left out. Blocks
/// while the code-signing tool runs once for each bundle; several run in parallel, and
/// `entitlements` is called from several threads.
[[nodiscard]] std::vector<InstalledApp>
scan(const std::vector<std::filesystem::path>& dirs = defaultSearchDirs(),
     const EntitlementReader& entitlements = codeSigningTool());

} // namespace AppCatalog
} // namespace quorvel

template<>
struct std::hash<quorvel::InstalledApp> {
    std::size_t operator()(const quorvel::InstalledApp& app) const noexcept;
};
