#pragma once

#include "Platform/files/FileHandle.h"

#include <chrono>
#include <optional>
#include <string>

namespace quorvel {

/// Reports, through an inherited pipe, whether a program that was opened to start another one
/// succeeded. Without such a pipe, because it was opened in another way, reports are discarded.
class StartReport {
public:
    /// The environment variable that names the pipe's descriptor.
    static constexpr const char* variable = "QUORVEL_START_REPORT";

    /// Takes over the pipe, if there is one, and announces that a report will follow. Removes the
    /// variable from the environment, so that no child uses it.
    StartReport();

    /// Reports success.
    void started() const;
    /// Reports failure, for the reason `sentence`.
    void failed(const std::string& sentence) const;

private:
    FileHandle pipe_;
};

/// The result of reading such a pipe.
struct StartOutcome {
    enum class Case {
        started,
        failed,      ///< `sentence` says why
        ended,       ///< the pipe was closed without a report
        nothingHeard ///< before the timeout
    };
    Case kind = Case::nothingHeard;
    std::string sentence{};
    bool announced = false; ///< the program announced a report
};

/// Reads the report from the pipe's other end. Waits up to `timeout` for a program that announces
/// none (it may be too old for reports), and up to `announcedTimeout` for one that does. Returns
/// early if `wake` becomes readable (-1: never).
[[nodiscard]] StartOutcome readStartReport(int pipe, int wake, std::chrono::milliseconds timeout,
                                           std::chrono::milliseconds announcedTimeout);

} // namespace quorvel
