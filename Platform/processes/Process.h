#pragma once

#include "Platform/files/FileHandle.h"
#include "Platform/files/PlatformError.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <sys/types.h>
#include <variant>
#include <vector>

namespace quorvel {

using Environment = std::map<std::string, std::string>;

/// The environment of this process, as it is now.
[[nodiscard]] Environment currentEnvironment();

/// A child process. It starts with default signal dispositions and an empty signal mask, and with
/// no descriptor of ours but its three standard streams and the one that it is given to keep.
class Process {
public:
    /// Goes where ours goes.
    struct Inherit {};
    /// Is thrown away; as an input, is empty.
    struct Discard {};
    /// Goes into an open file, owned by the caller, who may close it after `run`.
    struct ToFile {
        int descriptor = -1;
    };
    using Output = std::variant<Inherit, Discard, ToFile>;

    struct Options {
        std::filesystem::path executable{};
        std::vector<std::string> arguments{};             ///< without the program's own name
        std::optional<Environment> environment{};         ///< the whole of it; absent: ours
        std::optional<std::filesystem::path> directory{}; ///< absent: ours
        Output standardOutput = Inherit{};
        Output standardError = Inherit{};
        /// Own session and no standard input, so that it outlives the terminal and this process.
        bool detached = false;
        /// A descriptor that the child keeps open as `keptDescriptor`; -1: none.
        int kept = -1;
    };

    /// High enough that scripts, which redirect low numbers, don't close it by accident.
    static constexpr int keptDescriptor = 30;

    /// Starts the process. Throws `PlatformError` when the file can't be executed, or that names
    /// the folder when it can't be worked in.
    [[nodiscard]] static Process run(const Options& options);

    /// Starts the process, reads its standard output to the end and waits for it. Output beyond
    /// `limit` bytes is read and dropped. Standard error is discarded. Throws `PlatformError` when
    /// it can't be started.
    [[nodiscard]] static std::string capture(Options options, std::size_t limit);

    Process(Process&& other) noexcept;
    Process& operator=(Process&& other) noexcept;
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    /// Lets the process go on; it leaves no zombie when it ends.
    ~Process();

    [[nodiscard]] pid_t identifier() const noexcept { return pid_; }
    [[nodiscard]] bool isRunning();
    /// Asks it politely to end (SIGTERM). Nothing happens when it has ended.
    void terminate();
    void sendSignal(int signal);
    /// Waits for its end; returns the exit status, 128 + N when signal N ended it.
    int waitUntilExit();

private:
    explicit Process(pid_t pid) noexcept : pid_(pid) {}

    pid_t pid_;
    std::optional<int> status_{};
};

} // namespace quorvel
