#pragma once

#include "Platform/processes/Process.h"

namespace quorvel {

/// A program that was started, and the end of the pipe through which it reports how that went.
struct ReportedStart {
    Process process;
    FileHandle reports; ///< for `readStartReport`
};

/// Starts a program detached from this process and without output, and passes it the pipe for its
/// `StartReport`. `options.kept` is not used. Throws `PlatformError`.
[[nodiscard]] ReportedStart startReporting(Process::Options options);

} // namespace quorvel
