#pragma once

#include "Platform/desktop/Workspace.h"
#include "Platform/files/FileHandle.h"
#include "Platform/processes/ReportedStart.h"

#include <filesystem>
#include <list>
#include <mutex>
#include <thread>

namespace quorvel {

/// A program that was just started, with the pipe through which it may report: closed for one that
/// does not.
using StartedProgram = ReportedStart;

/// Starts the executable of a bundle as a desktop does, with these variables besides ours. Passes a
/// clone's runner a pipe for its `StartReport`. Returns the process and the pipe. Throws
/// `PlatformError` if it can't be started.
[[nodiscard]] StartedProgram startProgram(const std::filesystem::path& executable,
                                          const Environment& variables = {});

/// Starts a clone's runner in the same way, and waits for its report. Returns whether it reports
/// success. Returns false, and starts nothing, for the executable of any other bundle.
[[nodiscard]] bool startAndWait(const std::filesystem::path& executable,
                                const Environment& variables);

/// Waits in the background for the reports of started programs.
class StartWatch {
public:
    StartWatch();
    StartWatch(const StartWatch&) = delete;
    StartWatch& operator=(const StartWatch&) = delete;
    /// Stops waiting: programs that have not reported yet count as started.
    ~StartWatch();

    /// Calls `completion` once the program's start has succeeded or failed; immediately for a
    /// program that does not report. A runner too old to report counts as started after a second.
    void watch(StartedProgram program, const std::filesystem::path& bundle,
               Workspace::Completion completion);

private:
    struct Waiting {
        StartedProgram program;
        std::filesystem::path bundle;
        Workspace::Completion completion;
        std::thread thread{};
        bool over = false;
    };

    void waitForReport(Waiting& waiting);
    void joinFinished();

    FileHandle wake_;
    std::mutex mutex_{};
    std::list<Waiting> waiting_{};
};

} // namespace quorvel
