#pragma once

#include "WebHost/Handover.h"

#include <glib.h>

#include <functional>
#include <map>
#include <string>

namespace quorvel {

/// Takes the handovers of later openings of the clone, in the main loop.
class HandoverService {
public:
    /// `listener` is the socket, or -1.
    HandoverService(int listener, std::function<void(const WebHandover&)> taken);
    HandoverService(const HandoverService&) = delete;
    HandoverService& operator=(const HandoverService&) = delete;
    ~HandoverService();

private:
    struct Client {
        FileHandle socket;
        guint source = 0;
        std::string text{};
    };

    static gboolean arrived(int listener, GIOCondition condition, gpointer self);
    static gboolean sent(int socket, GIOCondition condition, gpointer self);

    std::function<void(const WebHandover&)> taken_;
    guint source_ = 0;
    std::map<int, Client> clients_{};
};

} // namespace quorvel
