#pragma once

#include "Platform/files/FileHandle.h"
#include "Platform/files/PlatformError.h"
#include "Platform/processes/Environment.h"

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <sys/types.h>
#include <variant>
#include <vector>

namespace quorvel {

/// Returns the number of this process.
[[nodiscard]] pid_t ownPid();

/// A child process. It starts with default signal dispositions and an empty signal mask, and
/// inherits no descriptors except its three standard streams and `Options::kept`.
class Process {
public:
    /// Inherits our stream.
    struct Inherit {};
    /// Discards the output.
    struct Discard {};
    /// Writes to an open file. The caller owns it and may close it after `run`.
    struct ToFile {
        int descriptor = -1;
    };
    using Output = std::variant<Inherit, Discard, ToFile>;

    struct Options {
        std::filesystem::path executable{};
        std::optional<std::string> programName{};         ///< absent: the executable's path
        std::vector<std::string> arguments{};             ///< without the program name
        std::optional<Environment> environment{};         ///< complete; absent: ours
        std::optional<std::filesystem::path> directory{}; ///< absent: ours
        Output standardOutput = Inherit{};
        Output standardError = Inherit{};
        /// A session of its own and no standard input, so that it outlives the terminal and us.
        bool detached = false;
        /// A descriptor that the child inherits as `keptDescriptor`; -1: none.
        int kept = -1;
    };

    /// High enough that scripts, which redirect low numbers, don't close it accidentally.
    static constexpr int keptDescriptor = 30;

    /// Starts a process. Throws `PlatformError` if the file can't be executed, or if the working
    /// folder is unusable, which the error then names.
    [[nodiscard]] static Process run(const Options& options);

    /// Starts a process, waits for its end and returns its standard output, of which everything
    /// after `limit` bytes is discarded, as is standard error. Throws `PlatformError` if it can't
    /// be started.
    [[nodiscard]] static std::string capture(Options options, std::size_t limit);

    Process(Process&& other) noexcept;
    Process& operator=(Process&& other) noexcept;
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    /// Leaves the process running. Unless it was detached, it then stays a zombie after its end
    /// until this process ends.
    ~Process();

    /// Leaves the process running and reaps it in the background when it ends. Nothing else may be
    /// called afterwards.
    void detach();

    [[nodiscard]] pid_t identifier() const noexcept { return pid_; }

    /// Returns whether the process is still running. Reaps it if it is not.
    [[nodiscard]] bool isRunning();

    /// Sends SIGTERM. Does nothing if the process has ended.
    void terminate();

    /// Sends a signal. Does nothing if the process has ended.
    void sendSignal(int signal);

    /// Waits for its end. Returns the exit status, or 128 + N if signal N ended it.
    int waitUntilExit();

    /// The same for as long as `limit`. Returns std::nullopt if it is still running then.
    [[nodiscard]] std::optional<int> waitUntilExit(std::chrono::milliseconds limit);

private:
    explicit Process(pid_t pid) noexcept : pid_(pid) {}

    pid_t pid_;
    std::optional<int> status_{};
};

} // namespace quorvel
