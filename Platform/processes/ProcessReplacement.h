#pragma once

#include "Platform/processes/Process.h"

#include <filesystem>
#include <string>
#include <vector>

namespace quorvel {

/// Replaces the environment of this process, in which no other thread may run.
void replaceEnvironment(const Environment& environment);

/// Has this process execute another program, with the streams and the environment that it has.
/// Throws `PlatformError` if that fails; otherwise it does not return.
[[noreturn]] void replaceProcess(const std::filesystem::path& program,
                                 const std::vector<std::string>& arguments);

} // namespace quorvel
