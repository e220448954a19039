#pragma once

#include "Platform/processes/Process.h"

#include <filesystem>
#include <optional>
#include <string>

namespace quorvel {

/// Returns the program of that name that is installed beside the runner: the one that the
/// environment variable `variable` names, or else the one that is installed; `std::nullopt` if
/// there is none.
[[nodiscard]] std::optional<std::filesystem::path>
helperProgram(const std::string& name, const std::string& variable, const Environment& session);

/// Returns the module of that file name that is installed beside the runner, for this process to
/// load. If the session's environment variable `variable` is set, only the file that it names
/// counts. Returns `std::nullopt` if there is none.
[[nodiscard]] std::optional<std::filesystem::path>
helperModule(const std::string& name, const std::string& variable, const Environment& session);

} // namespace quorvel
