#pragma once

#include "Platform/desktop/Workspace.h"
#include "Platform/files/FileHandle.h"
#include "Platform/processes/Process.h"

#include <filesystem>
#include <list>
#include <mutex>
#include <thread>

namespace quorvel {

/// A program that was just started, with the pipe through which it may report.
struct StartedProgram {
    Process process;
    FileHandle reports; ///< nothing is open for a program that reports nothing
};

/// Starts the executable of a bundle as a desktop does. A clone's runner gets a pipe for its
/// `StartReport`. Throws `PlatformError`.
[[nodiscard]] StartedProgram startProgram(const std::filesystem::path& executable);

/// Waits in the background for what started programs report.
class StartWatch {
public:
    StartWatch();
    StartWatch(const StartWatch&) = delete;
    StartWatch& operator=(const StartWatch&) = delete;
    /// Waits no longer: programs that have not reported yet count as started.
    ~StartWatch();

    /// Calls `completion` when the program's start has worked or failed: at once for a program that
    /// reports nothing. A runner too old to report counts as started once it has lived a second.
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
