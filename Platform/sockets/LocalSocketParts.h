#pragma once

#include "Platform/files/FileHandle.h"

#include <filesystem>
#include <optional>
#include <string>
#include <sys/un.h>

/// The system-specific parts of `LocalSocket`.
namespace quorvel::LocalSocket {

/// A socket's name in a folder, which is open.
struct Place {
    FileHandle folder;
    sockaddr_un address;
};

/// Returns the place; std::nullopt if the folder can't be opened or an address can't express it.
[[nodiscard]] std::optional<Place> placeOf(const std::filesystem::path& folder,
                                           const std::string& name);

/// Returns a socket that does not block and is not inherited. The result is not open if that fails.
[[nodiscard]] FileHandle newSocket();

/// The flags for sending without getting SIGPIPE when nobody listens.
extern const int sendingFlags;

} // namespace quorvel::LocalSocket
