#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace quorvel {

/// Has this process execute another program, with the streams and the environment that it has.
/// Throws `PlatformError` if that fails; otherwise it does not return.
[[noreturn]] void replaceProcess(const std::filesystem::path& program,
                                 const std::vector<std::string>& arguments);

} // namespace quorvel
