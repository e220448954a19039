#include "WebHost/HandoverService_macos.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace quorvel {
namespace {

constexpr std::size_t mostClients = 16;

dispatch_source_t sourceFor(int descriptor, void (^ready)(void)) {
    dispatch_source_t source =
        dispatch_source_create(DISPATCH_SOURCE_TYPE_READ, static_cast<std::uintptr_t>(descriptor),
                               0, dispatch_get_main_queue());
    dispatch_source_set_event_handler(source, ready);
    dispatch_resume(source);
    return source;
}

bool isPrepared(int socket) {
    constexpr int on = 1;
    return ::fcntl(socket, F_SETFD, FD_CLOEXEC) == 0 && ::fcntl(socket, F_SETFL, O_NONBLOCK) == 0 &&
           ::setsockopt(socket, SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof on) == 0;
}

} // namespace

HandoverService::HandoverService(int listener, std::function<void(const WebHandover&)> taken)
    : taken_(std::move(taken)) {
    if (listener >= 0) {
        source_ = sourceFor(listener, ^{
          arrived(listener);
        });
    }
}

void HandoverService::arrived(int listener) {
    FileHandle socket(::accept(listener, nullptr, nullptr));
    const int descriptor = socket.descriptor();
    if (descriptor < 0 || clients_.size() >= mostClients || !isPrepared(descriptor)) {
        return;
    }
    dispatch_source_t source = sourceFor(descriptor, ^{
      sent(descriptor);
    });
    clients_.emplace(descriptor, Client{std::move(socket), source});
}

void HandoverService::sent(int socket) {
    const auto found = clients_.find(socket);
    if (found == clients_.end()) {
        return;
    }
    std::array<char, 4096> part{};
    const ssize_t count = ::read(socket, part.data(), part.size());
    if (count < 0 && (errno == EAGAIN || errno == EINTR)) {
        return;
    }
    std::string& text = found->second.text;
    if (count > 0 && text.size() <= longestHandover) {
        text.append(part.data(), static_cast<std::size_t>(count));
        return;
    }
    const auto handover = count == 0 ? WebHandover::parse(text) : std::nullopt;
    if (handover) {
        (void)::send(socket, "1", 1, 0);
    }
    dispatch_source_t source = found->second.source;
    // The descriptor must stay open until the source is done with it.
    const auto closing = std::make_shared<Client>(std::move(found->second));
    clients_.erase(found);
    dispatch_source_set_cancel_handler(source, ^{
      (void)closing;
    });
    closing->source = nil;
    dispatch_source_cancel(source);
    if (handover) {
        taken_(*handover);
    }
}

} // namespace quorvel
