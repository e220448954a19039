#include "WebHost/HandoverService_linux.h"

#include <glib-unix.h>

#include <array>
#include <cerrno>
#include <sys/socket.h>
#include <unistd.h>

namespace quorvel {
namespace {

constexpr std::size_t mostClients = 16;

} // namespace

HandoverService::HandoverService(int listener, std::function<void(const WebHandover&)> taken)
    : taken_(std::move(taken)) {
    if (listener >= 0) {
        source_ = g_unix_fd_add(listener, G_IO_IN, arrived, this);
    }
}

HandoverService::~HandoverService() {
    if (source_ != 0) {
        g_source_remove(source_);
    }
    for (const auto& [descriptor, client] : clients_) {
        g_source_remove(client.source);
    }
}

gboolean HandoverService::arrived(int listener, GIOCondition /*condition*/, gpointer self) {
    auto& service = *static_cast<HandoverService*>(self);
    FileHandle socket(::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    const int descriptor = socket.descriptor();
    if (descriptor >= 0 && service.clients_.size() < mostClients) {
        const guint source = g_unix_fd_add(descriptor, G_IO_IN, sent, self);
        service.clients_.emplace(descriptor, Client{std::move(socket), source});
    }
    return G_SOURCE_CONTINUE;
}

gboolean HandoverService::sent(int socket, GIOCondition /*condition*/, gpointer self) {
    auto& service = *static_cast<HandoverService*>(self);
    Client& client = service.clients_.at(socket);
    std::array<char, 4096> part{};
    const ssize_t count = ::read(socket, part.data(), part.size());
    if (count < 0 && (errno == EAGAIN || errno == EINTR)) {
        return G_SOURCE_CONTINUE;
    }
    if (count > 0 && client.text.size() <= longestHandover) {
        client.text.append(part.data(), static_cast<std::size_t>(count));
        return G_SOURCE_CONTINUE;
    }
    const auto handover = count == 0 ? WebHandover::parse(client.text) : std::nullopt;
    if (handover) {
        (void)::send(socket, "1", 1, MSG_NOSIGNAL);
    }
    service.clients_.erase(socket);
    if (handover) {
        service.taken_(*handover);
    }
    return G_SOURCE_REMOVE;
}

} // namespace quorvel
