#pragma once

#include "Platform/processes/Environment.h"

#include <filesystem>
#include <optional>
#include <string>

namespace quorvel {

/// Returns the program of that name that is installed beside the runner: the one that the
/// environment variable `variable` names, or else the one of the installation that this program
/// belongs to, or that made the clone that it is in, or else the one in the usual places;
/// `std::nullopt` if there is none.
[[nodiscard]] std::optional<std::filesystem::path>
helperProgram(const std::string& name, const std::string& variable, const Environment& session);

/// Returns the module of that file name that is installed beside the runner, for this process to
/// load, from the same places. If the session's environment variable `variable` is set, only the
/// file that it names counts. Returns `std::nullopt` if there is none.
[[nodiscard]] std::optional<std::filesystem::path>
helperModule(const std::string& name, const std::string& variable, const Environment& session);

/// Returns the folder of a runner and its programs if no clone looks for them there by itself, as
/// after an installation below another prefix than the build was made for. The clone's notes then
/// say it ("helpers").
[[nodiscard]] std::optional<std::string> unusualHelperFolder(const std::filesystem::path& runner);

} // namespace quorvel
