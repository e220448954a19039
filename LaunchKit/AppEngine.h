#pragma once

#include "LaunchKit/CloneOptions.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel {

/// The engine that an application is built on.
enum class AppEngine { electron, chromium, firefox, eclipse, other };

template<>
inline constexpr auto enumNames<AppEngine> = namesOfAllCases<AppEngine>({
    {AppEngine::electron, "electron"},
    {AppEngine::chromium, "chromium"},
    {AppEngine::firefox, "firefox"},
    {AppEngine::eclipse, "eclipse"},
    {AppEngine::other, "other"},
});

/// Returns the engine of an application bundle, `other` if it is unknown or the bundle can't be
/// read. Reads the bundle's own identifier if `bundleId` is absent. Any thread.
[[nodiscard]] AppEngine detectEngine(const std::filesystem::path& app,
                                     const std::optional<std::string>& bundleId = std::nullopt);

/// Returns the arguments that make the engine keep its data below `home`; none for `other`.
[[nodiscard]] std::vector<std::string> dataDirArgs(AppEngine engine,
                                                   std::string_view home = instanceHomePlaceholder);

/// Returns the same arguments for an Electron application, and none for any other.
[[nodiscard]] std::vector<std::string>
electronArgs(const std::filesystem::path& app, std::string_view home = instanceHomePlaceholder);

} // namespace quorvel
