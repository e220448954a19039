#pragma once

#include "Platform/processes/Process.h"

#include <csignal>

namespace quorvel {

/// Passes requests to end this process on to a child. From its construction on, SIGTERM, SIGINT,
/// SIGHUP and SIGCHLD are blocked in the calling thread and stay so: none is lost before the child
/// is started. To be constructed before any other thread is.
class SignalForwarder {
public:
    SignalForwarder();

    /// Waits for the process and sends it every signal that arrives meanwhile. Returns its exit
    /// status, or 128 + N if signal N ended it. Call it in the thread that constructed this.
    [[nodiscard]] int waitUntilExit(Process& process) const;

private:
    sigset_t signals_{};
};

} // namespace quorvel
