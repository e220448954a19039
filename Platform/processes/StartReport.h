#pragma once

#include "Platform/files/FileHandle.h"

#include <chrono>
#include <optional>
#include <string>

namespace quorvel {

/// How a program that starts another one on somebody's behalf tells whoever opened it whether that
/// worked: through a pipe that it inherits. Without one, because it was opened in another way, the
/// reports go nowhere.
class StartReport {
public:
    /// The environment variable that names the pipe's descriptor.
    static constexpr const char* variable = "QUORVEL_START_REPORT";

    /// Takes over the pipe, if there is one, and says that a report will follow. Takes the variable
    /// out of the environment, so that no child believes that it is meant.
    StartReport();

    /// What was to be started runs.
    void started() const;
    /// It does not; `sentence` says why.
    void failed(const std::string& sentence) const;

private:
    FileHandle pipe_;
};

/// What a reader of such a pipe learns.
struct StartOutcome {
    enum class Case {
        started,
        failed,      ///< with the program's own sentence
        ended,       ///< the pipe was closed without a report
        nothingHeard ///< in time
    };
    Case kind = Case::nothingHeard;
    std::string sentence{};
    bool announced = false; ///< the program said that it would report
};

/// Reads the report from the pipe's other end. Waits `patience` for a program that says nothing (it
/// may know no reports), and `announcedPatience` for one that said that it will report. Ends early
/// when `wake` becomes readable (-1: never).
[[nodiscard]] StartOutcome readStartReport(int pipe, int wake, std::chrono::milliseconds patience,
                                           std::chrono::milliseconds announcedPatience);

} // namespace quorvel
