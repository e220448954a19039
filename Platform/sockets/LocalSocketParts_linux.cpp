#include "Platform/sockets/LocalSocketParts.h"

#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>

namespace quorvel::LocalSocket {

const int sendingFlags = MSG_NOSIGNAL;

// A socket's path has at most 107 bytes, and a home's may be longer.
std::optional<Place> placeOf(const std::filesystem::path& folder, const std::string& name) {
    Place place{FileHandle(::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)), {}};
    const std::string path =
        "/proc/self/fd/" + std::to_string(place.folder.descriptor()) + "/" + name;
    if (place.folder.descriptor() < 0 || path.size() >= sizeof place.address.sun_path) {
        return std::nullopt;
    }
    place.address.sun_family = AF_UNIX;
    std::memcpy(place.address.sun_path, path.data(), path.size());
    return place;
}

FileHandle newSocket() {
    return FileHandle(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
}

} // namespace quorvel::LocalSocket
