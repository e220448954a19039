#pragma once

#include "LaunchKit/AppCatalog.h"
#include "Platform/desktop/Workspace.h"
#include "Presentation/SystemWords.h"
#include "Presentation/Translation.h"
#include "ProbeKit/Models.h"

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <vector>

/// The forms in which the commands about installed applications print what they found.
namespace quorvel {

/// Returns the app's path, name and identifier, and its icon's path if it has one.
[[nodiscard]] nlohmann::json jsonForm(const InstalledApp& app);
/// Returns the application's identifier, path and process id.
[[nodiscard]] nlohmann::json jsonForm(const RunningApplication& application);
/// Returns the profile, the recorded paths by bucket, and whether the recording is complete.
[[nodiscard]] nlohmann::json jsonForm(const AppProfile& profile, const ProbeResult& result);

/// Returns one line per app, safe for a terminal: the name, the identifier, the path.
[[nodiscard]] std::string listing(const std::vector<InstalledApp>& apps);
/// Returns one line per application, safe for a terminal: the process id, the identifier, the path.
[[nodiscard]] std::string listing(const std::vector<RunningApplication>& applications);

/// Returns the results of the trial, safe for a terminal: the recommendation and the reasons for
/// it.
[[nodiscard]] std::string description(const AppProfile& profile, const ProbeResult& result,
                                      const Translate& translate = inSystemWords);

} // namespace quorvel
