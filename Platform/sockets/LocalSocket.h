#pragma once

#include "Platform/files/FileHandle.h"

#include <chrono>
#include <filesystem>
#include <string>

/// Sockets in one of the user's folders, through which programs of the same user talk to each
/// other.
namespace quorvel::LocalSocket {

/// Makes a socket of that name in the folder, whose path may be of any length except on macOS, and
/// listens on it. Replaces a socket that is there, and nothing else. The result is not open if that
/// fails.
[[nodiscard]] FileHandle listenIn(const std::filesystem::path& folder, const std::string& name);

/// Sends a text to the process that listens on that socket, and returns its answer, at most 16
/// bytes. Returns an empty text if none listens or answers within `patience`.
[[nodiscard]] std::string ask(const std::filesystem::path& folder, const std::string& name,
                              const std::string& text, std::chrono::milliseconds patience);

} // namespace quorvel::LocalSocket
