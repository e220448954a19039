#pragma once

#include "LaunchKit/AppProfile.h"
#include "LaunchKit/RunnerLocator.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace quorvel {

struct AppBundle;

/// The profiles of applications that are shipped with Quorvel: one file per application, named
/// after the application's identifier.
namespace ShippedProfiles {

/// Returns the folders where profiles may be, best first: beside the application's resources, then
/// ../share/quorvel/profiles beside its executables.
[[nodiscard]] std::vector<std::filesystem::path> folders(const ApplicationFolders& application);

/// Returns the profile of the application with that identifier; `std::nullopt` if there is none
/// that can be read.
[[nodiscard]] std::optional<AppProfile>
find(const std::string& bundleId,
     const std::vector<std::filesystem::path>& places = folders(ApplicationFolders::current()));

/// Returns the variables to propose for a clone of the application: those of its profile. Without
/// one, an application that the session's bus can start is assumed to need a clone without the bus.
[[nodiscard]] std::map<std::string, std::string> suggestedEnvironment(const AppBundle& app);

} // namespace ShippedProfiles
} // namespace quorvel
