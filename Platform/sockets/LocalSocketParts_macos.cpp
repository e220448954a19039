#include "Platform/sockets/LocalSocketParts.h"

#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>
#include <utility>

namespace quorvel::LocalSocket {

const int sendingFlags = 0; // `newSocket` sets SO_NOSIGPIPE instead

std::optional<Place> placeOf(const std::filesystem::path& folder, const std::string& name) {
    constexpr std::size_t longest = 103; // bytes of a path
    Place place{FileHandle(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)), {}};
    const std::string path = (folder / name).string();
    if (place.folder.descriptor() < 0 || path.size() > longest) {
        return std::nullopt;
    }
    place.address.sun_family = AF_UNIX;
    std::memcpy(place.address.sun_path, path.data(), path.size());
    return place;
}

FileHandle newSocket() {
    constexpr int on = 1;
    FileHandle socket(::socket(AF_UNIX, SOCK_STREAM, 0));
    const int number = socket.descriptor();
    const bool isPrepared = number >= 0 && ::fcntl(number, F_SETFD, FD_CLOEXEC) == 0 &&
                            ::fcntl(number, F_SETFL, O_NONBLOCK) == 0 &&
                            ::setsockopt(number, SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof on) == 0;
    return isPrepared ? std::move(socket) : FileHandle(-1);
}

} // namespace quorvel::LocalSocket
