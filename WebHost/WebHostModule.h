#pragma once

#include <cstdint>

/// The interface of the module that shows web clones. The runner loads it, so it is C: nothing of
/// the C++ library crosses it, and no exception.
extern "C" {

/// What the runner asks for.
struct QuorvelWebHostRequest {
    std::uint32_t abi;              ///< `webHostAbi` of the runner; always the first member
    const char* configFile;         ///< the clone's configuration
    const char* windowWord;         ///< what its windows are to be known by
    const char* address;            ///< to open instead of the clone's own; null for none
    int listener;                   ///< the socket on which addresses are handed over; -1 for none
    void* context;                  ///< for the functions
    void (*started)(void* context); ///< the window is there
    /// The window can't be shown, for this reason (a sentence).
    void (*failed)(void* context, const char* sentence);
};

/// Shows the clone until its window is closed or it is asked to end. Returns the exit status.
using QuorvelWebHostRun = int (*)(const QuorvelWebHostRequest* request);
}

namespace quorvel {

/// Changes with every change of the request.
inline constexpr std::uint32_t webHostAbi = 1;
inline constexpr const char* webHostFunction = "quorvel_web_host_run";
/// In the session's environment, the path of another module.
inline constexpr const char* webHostVariable = "QUORVEL_WEB_HOST";

} // namespace quorvel
