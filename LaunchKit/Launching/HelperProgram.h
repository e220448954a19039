#pragma once

#include "Platform/processes/Environment.h"

#include <filesystem>
#include <optional>
#include <string>

namespace quorvel {

/// Returns the first program `name` of these: the one that the variable `variable` of `session`
/// names; that of the installation that this program belongs to; that of the installation that made
/// the clone that this program is in; one in the usual places. Returns `std::nullopt` if there is
/// none.
[[nodiscard]] std::optional<std::filesystem::path>
helperProgram(const std::string& name, const std::string& variable, const Environment& session);

/// Returns the module with the file name `name` from the same places, for this process to load. If
/// `variable` is set in `session`, only the file that it names counts. Returns `std::nullopt` if
/// there is none.
[[nodiscard]] std::optional<std::filesystem::path>
helperModule(const std::string& name, const std::string& variable, const Environment& session);

/// Returns the folder of `runner` and its helper programs if clones don't look there by themselves,
/// such as after an installation under another prefix than the build's: it is then noted in each
/// clone ("helpers"). Returns `std::nullopt` otherwise.
[[nodiscard]] std::optional<std::string> unusualHelperFolder(const std::filesystem::path& runner);

} // namespace quorvel
