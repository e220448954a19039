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

struct AppBundle;

/// Returns the engine of an application, `other` if it is unknown or the application can't be
/// read. Of a bundle, reads its own identifier if `bundleId` is absent. Of a desktop entry, looks
/// at the program that links and scripts lead to. Any thread.
[[nodiscard]] AppEngine detectEngine(const std::filesystem::path& app,
                                     const std::optional<std::string>& bundleId = std::nullopt);

/// Returns the same for an application that has been read.
[[nodiscard]] AppEngine detectEngine(const AppBundle& app);

/// Returns the arguments that make the engine keep its data below `home`; none for `other`.
[[nodiscard]] std::vector<std::string> dataDirArgs(AppEngine engine,
                                                   std::string_view home = instanceHomePlaceholder);

/// Returns the same arguments for an Electron application, and none for any other.
[[nodiscard]] std::vector<std::string>
electronArgs(const std::filesystem::path& app, std::string_view home = instanceHomePlaceholder);

} // namespace quorvel
