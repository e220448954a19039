#include "Platform/sockets/LocalSocket.h"

#include "Platform/sockets/LocalSocketParts.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <string_view>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvel::LocalSocket {
namespace {

using Clock = std::chrono::steady_clock;

const sockaddr* general(const sockaddr_un& address) {
    return reinterpret_cast<const sockaddr*>(&address); // NOLINT: as the interface wants it
}

void removeOldSocket(const FileHandle& folder, const std::string& name) {
    struct stat facts {};
    if (::fstatat(folder.descriptor(), name.c_str(), &facts, AT_SYMLINK_NOFOLLOW) == 0 &&
        S_ISSOCK(facts.st_mode)) {
        (void)::unlinkat(folder.descriptor(), name.c_str(), 0);
    }
}

bool waitFor(const FileHandle& socket, short events, Clock::time_point deadline) {
    while (true) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        pollfd entry{socket.descriptor(), events, 0};
        const int ready =
            ::poll(&entry, 1, static_cast<int>(std::max<std::int64_t>(left.count(), 0)));
        if (ready >= 0 || errno != EINTR) {
            return ready > 0;
        }
    }
}

bool sendAll(const FileHandle& socket, std::string_view text, Clock::time_point deadline) {
    while (!text.empty()) {
        const ssize_t sent = ::send(socket.descriptor(), text.data(), text.size(), sendingFlags);
        if (sent > 0) {
            text.remove_prefix(static_cast<std::size_t>(sent));
        } else if ((errno != EAGAIN && errno != EINTR) || !waitFor(socket, POLLOUT, deadline)) {
            return false;
        }
    }
    return ::shutdown(socket.descriptor(), SHUT_WR) == 0;
}

} // namespace

FileHandle listenIn(const std::filesystem::path& folder, const std::string& name) {
    constexpr int waiting = 16;
    const auto place = placeOf(folder, name);
    FileHandle socket = newSocket();
    if (!place || socket.descriptor() < 0) {
        return FileHandle(-1);
    }
    removeOldSocket(place->folder, name);
    if (::bind(socket.descriptor(), general(place->address), sizeof place->address) != 0 ||
        ::fchmodat(place->folder.descriptor(), name.c_str(), 0600, 0) != 0 ||
        ::listen(socket.descriptor(), waiting) != 0) {
        return FileHandle(-1);
    }
    return socket;
}

std::string ask(const std::filesystem::path& folder, const std::string& name,
                const std::string& text, std::chrono::milliseconds patience) {
    const auto deadline = Clock::now() + patience;
    const auto place = placeOf(folder, name);
    const FileHandle socket = newSocket();
    if (!place || socket.descriptor() < 0 ||
        ::connect(socket.descriptor(), general(place->address), sizeof place->address) != 0 ||
        !sendAll(socket, text, deadline) || !waitFor(socket, POLLIN, deadline)) {
        return {};
    }
    std::string answer(16, '\0');
    const ssize_t count = ::recv(socket.descriptor(), answer.data(), answer.size(), 0);
    answer.resize(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    return answer;
}

} // namespace quorvel::LocalSocket
