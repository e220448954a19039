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
    /// The file of the app's icon; nothing when its property list names none that exists.
    [[nodiscard]] std::optional<std::filesystem::path> iconURL() const;

    bool operator==(const InstalledApp&) const = default;
};

namespace AppCatalog {

/// "/Applications", "/Applications/Utilities", "~/Applications" and "/System/Applications".
[[nodiscard]] std::vector<std::filesystem::path> defaultSearchDirs();

/// The applications directly in the folders, without the clones' wrappers, each identifier once
/// (the first that is found), sorted by name as the user's locale does, upper and lower case
/// alike. What can't be read is left out. Blocks while the code-signing tool runs once for each
/// bundle; several run side by side, and `entitlements` is called from several threads.
[[nodiscard]] std::vector<InstalledApp>
scan(const std::vector<std::filesystem::path>& dirs = defaultSearchDirs(),
     const EntitlementReader& entitlements = codeSigningTool());

} // namespace AppCatalog
} // namespace quorvel

template<>
struct std::hash<quorvel::InstalledApp> {
    std::size_t operator()(const quorvel::InstalledApp& app) const noexcept;
};
