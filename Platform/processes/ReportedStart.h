#pragma once

#include "Platform/processes/Process.h"
#include "Platform/processes/StartReport.h"

namespace quorvel {

/// A program that was started, and the end of the pipe through which it reports how that went.
struct ReportedStart {
    Process process;
    FileHandle reports;
};

/// Starts a program detached from this process and without output, and passes it the pipe for its
/// `StartReport`. `options.kept` is not used. Throws `PlatformError`.
[[nodiscard]] ReportedStart startReporting(Process::Options options);

/// Waits for the program's report as long as a clone's runner may take: 30 seconds, or one if it
/// does not announce a report. Returns early if `wake` becomes readable (-1: never).
[[nodiscard]] StartOutcome outcomeOf(const ReportedStart& start, int wake = -1);

} // namespace quorvel
