#pragma once

#include "LaunchKit/AppCatalog.h"
#include "Platform/desktop/Workspace.h"
#include "ProbeKit/Models.h"

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <vector>

/// The forms in which the commands about other people's apps print what they found.
namespace quorvel {

[[nodiscard]] nlohmann::json jsonForm(const InstalledApp& app);
[[nodiscard]] nlohmann::json jsonForm(const RunningApplication& application);
/// The profile, the recorded paths by bucket, and whether the record is complete.
[[nodiscard]] nlohmann::json jsonForm(const AppProfile& profile, const ProbeResult& result);

/// One line each: the name, the identifier, the place.
[[nodiscard]] std::string listing(const std::vector<InstalledApp>& apps);
/// One line each: the process, the identifier, the place.
[[nodiscard]] std::string listing(const std::vector<RunningApplication>& applications);

/// What the trial showed, for a person: the recommendation and why.
[[nodiscard]] std::string description(const AppProfile& profile, const ProbeResult& result);

/// A bar of fixed width that stands for `fraction`, to be drawn over the one before on its line.
[[nodiscard]] std::string progressBar(double fraction);
/// Takes the bar away.
[[nodiscard]] std::string noProgressBar();

} // namespace quorvel
