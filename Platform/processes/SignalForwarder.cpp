#include "Platform/processes/SignalForwarder.h"

#include <pthread.h>

namespace quorvel {

SignalForwarder::SignalForwarder() {
    // Our parent may have ignored SIGCHLD, which would discard the child's exit status. Without a
    // handler, some systems discard the signal even while sigwait() waits for it.
    std::signal(SIGCHLD, [](int) {});
    sigemptyset(&signals_);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGCHLD}) {
        sigaddset(&signals_, signal);
    }
    pthread_sigmask(SIG_BLOCK, &signals_, nullptr);
}

int SignalForwarder::waitUntilExit(Process& process) const {
    while (process.isRunning()) {
        int signal = 0;
        sigwait(&signals_, &signal);
        if (signal != SIGCHLD) {
            process.sendSignal(signal);
        }
    }
    return process.waitUntilExit();
}

} // namespace quorvel
