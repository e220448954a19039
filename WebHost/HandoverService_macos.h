#pragma once

#include "WebHost/Handover.h"

#include <dispatch/dispatch.h>

#include <functional>
#include <map>
#include <string>

namespace quorvel {

/// Takes the handovers of later openings of the clone, on the main queue. Lasts as long as the
/// process.
class HandoverService {
public:
    /// `listener` is the socket, or -1.
    HandoverService(int listener, std::function<void(const WebHandover&)> taken);
    HandoverService(const HandoverService&) = delete;
    HandoverService& operator=(const HandoverService&) = delete;

private:
    struct Client {
        FileHandle socket;
        dispatch_source_t source;
        std::string text{};
    };

    void arrived(int listener);
    void sent(int socket);

    std::function<void(const WebHandover&)> taken_;
    dispatch_source_t source_ = nil;
    std::map<int, Client> clients_{};
};

} // namespace quorvel
