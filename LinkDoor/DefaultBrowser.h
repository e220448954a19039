#pragma once

#include "Platform/files/PlatformError.h"
#include "Platform/processes/Environment.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

/// Starting programs in the session that this process's environment describes.
namespace quorvel {

/// Starts a program that outlives this process, in a session of its own and in the user's home, and
/// discards its output. Without an environment, it gets this process's. Throws `PlatformError`.
void startDetached(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                   const std::optional<Environment>& environment = std::nullopt);

/// Returns the first `xdg-open` in `PATH` that is not this program; std::nullopt if there is none.
[[nodiscard]] std::optional<std::filesystem::path> realXdgOpen();

/// Opens a checked address with the application that is the default for its scheme, or by way of
/// `xdg-open` if none is named. Returns false if neither can be started, or if the application
/// would have a shell interpret the address.
[[nodiscard]] bool openWithDefault(const std::string& scheme, const std::string& address);

} // namespace quorvel
