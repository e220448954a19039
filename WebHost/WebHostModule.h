#pragma once

#include <cstdint>

/// The interface of the module that shows web clones. The runner loads it, so it is C: nothing of
/// the C++ library crosses it, and no exception.
extern "C" {

/// What the runner asks for.
struct QuorvelWebHostRequest {
    std::uint32_t abi;              ///< `webHostAbi` of the runner; always the first member
    const char* configFile;         ///< the clone's configuration
    const char* windowWord;         ///< by which the desktop recognizes its windows
    const char* address;            ///< to open instead of the clone's own; null for none
    int listener;                   ///< the socket on which addresses are handed over; -1 for none
    void* context;                  ///< passed to the functions below
    void (*started)(void* context); ///< called once the window is shown
    /// Called if the window can't be shown, with the reason as a sentence.
    void (*failed)(void* context, const char* sentence);
};

/// Shows the clone until its window is closed or it is asked to end. Returns the exit status.
using QuorvelWebHostRun = int (*)(const QuorvelWebHostRequest* request);
}

namespace quorvel {

/// Changes whenever `QuorvelWebHostRequest` does.
inline constexpr std::uint32_t webHostAbi = 1;
/// The name of the module's `QuorvelWebHostRun`.
inline constexpr const char* webHostFunction = "quorvel_web_host_run";
/// The variable of the session's environment that contains the path of another module.
inline constexpr const char* webHostVariable = "QUORVEL_WEB_HOST";

} // namespace quorvel
