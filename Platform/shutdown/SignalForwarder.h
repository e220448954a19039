#pragma once

#include "Platform/processes/Process.h"

#include <csignal>
#include <vector>

namespace quorvel {

/// Passes requests to end this process on to a child, and to the processes that outlive it. From
/// its construction on, SIGTERM, SIGINT, SIGHUP and SIGCHLD are blocked in the calling thread and
/// stay so: none is lost before the child is started. To be constructed before any other thread is.
class SignalForwarder {
public:
    SignalForwarder();

    /// Waits for the process and sends it every signal that arrives meanwhile. Then waits in the
    /// same way for the other `runningChildren`, those that it adopted: they get the last
    /// signal too, even if it arrived before. Returns the exit status of `process`, or 128 + N if
    /// signal N ended it. Companions are children that only serve the others: they are not waited
    /// for, but ended after them. Call it in the thread that constructed this.
    [[nodiscard]] int waitUntilExit(Process& process, std::vector<Process> companions = {}) const;

    /// Undoes what the constructor did: the signals have their default effect again in the calling
    /// thread, and in what it starts. For a process that goes on without a child.
    void stop() const;

private:
    // Waits for a signal that is not about a child.
    [[nodiscard]] int nextSignal() const;

    sigset_t signals_{};
};

} // namespace quorvel
