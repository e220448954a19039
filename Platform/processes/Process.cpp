#include "Platform/processes/Process.h"

#include "Base/PathText.h"
#include "Platform/processes/Pipe.h"
#include "Platform/processes/ProcessSpawning.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace quorvel {
namespace {

// The child's C strings, which must live until it is started.
class StringBlock {
public:
    void add(std::string text) { texts_.push_back(std::move(text)); }

    [[nodiscard]] char* const* pointers() {
        pointers_.clear();
        for (std::string& text : texts_) {
            pointers_.push_back(text.data());
        }
        pointers_.push_back(nullptr);
        return pointers_.data();
    }

    [[nodiscard]] bool hasNul() const {
        return std::any_of(texts_.begin(), texts_.end(),
                           [](const std::string& text) { return quorvel::hasNul(text); });
    }

private:
    std::vector<std::string> texts_;
    std::vector<char*> pointers_;
};

class FileActions {
public:
    FileActions() { posix_spawn_file_actions_init(&actions_); }
    ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    void route(int stream, const Process::Output& output) {
        if (std::holds_alternative<Process::Discard>(output)) {
            open(stream, O_WRONLY);
        } else if (const auto* file = std::get_if<Process::ToFile>(&output)) {
            posix_spawn_file_actions_adddup2(&actions_, file->descriptor, stream);
        } else {
            keep(stream);
        }
    }

    void open(int stream, int flags) {
        posix_spawn_file_actions_addopen(&actions_, stream, "/dev/null", flags, 0);
    }

    void keep(int stream) { ProcessSpawning::keepStream(actions_, stream); }

    void changeDirectory(const std::filesystem::path& directory) {
        posix_spawn_file_actions_addchdir_np(&actions_, directory.c_str());
    }

    void closeOthers(int kept) {
        if (kept >= 0) {
            posix_spawn_file_actions_adddup2(&actions_, kept, Process::keptDescriptor);
            ProcessSpawning::closeOthersBut(actions_, Process::keptDescriptor);
        } else {
            ProcessSpawning::closeOthers(actions_);
        }
    }

    [[nodiscard]] const posix_spawn_file_actions_t* get() const { return &actions_; }

private:
    posix_spawn_file_actions_t actions_{};
};

// posix_spawn() reports a missing program and an unusable folder with the same codes.
void requireFolder(const std::filesystem::path& folder) {
    struct stat facts {};
    if (::stat(folder.c_str(), &facts) == 0 && !S_ISDIR(facts.st_mode)) {
        errno = ENOTDIR;
    } else if (::access(folder.c_str(), X_OK) == 0) {
        return;
    }
    throw PlatformError::fromErrno(folder, "used as the working folder");
}

class SpawnAttributes {
public:
    explicit SpawnAttributes(bool ownSession) {
        posix_spawnattr_init(&attributes_);
        sigset_t none;
        sigset_t all;
        sigemptyset(&none);
        sigfillset(&all);
        // On some systems, resetting uncatchable signals is an error.
        sigdelset(&all, SIGKILL);
        sigdelset(&all, SIGSTOP);
        posix_spawnattr_setsigmask(&attributes_, &none);
        posix_spawnattr_setsigdefault(&attributes_, &all);
        int flags =
            POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | ProcessSpawning::closingFlags();
        if (ownSession) {
            flags |= POSIX_SPAWN_SETSID;
        }
        posix_spawnattr_setflags(&attributes_, static_cast<short>(flags));
    }
    ~SpawnAttributes() { posix_spawnattr_destroy(&attributes_); }
    SpawnAttributes(const SpawnAttributes&) = delete;
    SpawnAttributes& operator=(const SpawnAttributes&) = delete;

    [[nodiscard]] const posix_spawnattr_t* get() const { return &attributes_; }

private:
    posix_spawnattr_t attributes_{};
};

int exitStatus(int waitStatus) {
    return WIFSIGNALED(waitStatus) ? 128 + WTERMSIG(waitStatus) : WEXITSTATUS(waitStatus);
}

int waitFor(pid_t pid) {
    int status = 0;
    while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    return exitStatus(status);
}

} // namespace

pid_t ownPid() {
    return ::getpid();
}

Process Process::run(const Options& options) {
    StringBlock arguments;
    arguments.add(options.programName.value_or(options.executable.native()));
    for (const std::string& argument : options.arguments) {
        arguments.add(argument);
    }
    StringBlock environment;
    for (const auto& [key, value] : options.environment.value_or(Environment{})) {
        environment.add(std::string(key).append(1, '=').append(value));
    }
    const bool folderHasNul = options.directory && hasNul(*options.directory);
    if (arguments.hasNul() || environment.hasNul() || folderHasNul) {
        throw PlatformError(std::make_error_code(std::errc::invalid_argument), options.executable,
                            "started");
    }

    FileActions actions;
    if (options.detached) {
        actions.open(STDIN_FILENO, O_RDONLY);
    } else {
        actions.keep(STDIN_FILENO);
    }
    actions.route(STDOUT_FILENO, options.standardOutput);
    actions.route(STDERR_FILENO, options.standardError);
    actions.closeOthers(options.kept);
    std::filesystem::path executable = options.executable;
    if (options.directory) {
        // A relative program path is relative to our folder, not to the child's.
        std::error_code code;
        executable = std::filesystem::absolute(executable, code);
        if (code) {
            throw PlatformError(code, options.executable, "started");
        }
        actions.changeDirectory(*options.directory);
    }

    const SpawnAttributes attributes(options.detached);
    pid_t pid = 0;
    const int code = ::posix_spawn(
        &pid, executable.c_str(), actions.get(), attributes.get(), arguments.pointers(),
        options.environment ? environment.pointers() : ProcessSpawning::environmentBlock());
    if (code != 0) {
        if (options.directory) {
            requireFolder(*options.directory);
        }
        throw PlatformError(std::error_code(code, std::generic_category()), options.executable,
                            "started");
    }
    return Process(pid);
}

std::string Process::capture(Options options, std::size_t limit) {
    Pipe pipe = openPipe(options.executable, "started");
    options.standardOutput = ToFile{pipe.writing.descriptor()};
    options.standardError = Discard{};
    Process process = run(options);
    pipe.writing = FileHandle(-1); // only the child's is left

    // Read while it runs: otherwise a full pipe would block it.
    std::string output;
    char chunk[4096];
    while (true) {
        const ssize_t count = ::read(pipe.reading.descriptor(), chunk, sizeof chunk);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            break;
        }
        output.append(chunk, std::min(static_cast<std::size_t>(count), limit - output.size()));
    }
    process.waitUntilExit();
    return output;
}

Process::Process(Process&& other) noexcept
    : pid_(std::exchange(other.pid_, 0)),
      status_(other.status_) {}

Process& Process::operator=(Process&& other) noexcept {
    std::swap(pid_, other.pid_);
    std::swap(status_, other.status_);
    return *this;
}

Process::~Process() {
    (void)isRunning(); // reaps one that has ended
}

void Process::detach() {
    if (!isRunning()) {
        return;
    }
    try {
        std::thread([pid = std::exchange(pid_, 0)] { waitFor(pid); }).detach();
    } catch (const std::system_error&) {
        // Without a thread it stays a zombie until this process ends.
    }
}

bool Process::isRunning() {
    if (status_ || pid_ <= 0) {
        return false;
    }
    int status = 0;
    const pid_t ended = ::waitpid(pid_, &status, WNOHANG);
    if (ended == 0 || (ended < 0 && errno == EINTR)) {
        return true;
    }
    status_ = ended > 0 ? exitStatus(status) : 0;
    return false;
}

void Process::terminate() {
    sendSignal(SIGTERM);
}

void Process::sendSignal(int signal) {
    // Until it is reaped, its number cannot belong to another process.
    if (isRunning()) {
        ::kill(pid_, signal);
    }
}

int Process::waitUntilExit() {
    if (!status_) {
        status_ = waitFor(pid_);
    }
    return *status_;
}

std::optional<int> Process::waitUntilExit(std::chrono::milliseconds limit) {
    constexpr std::chrono::milliseconds nap{2};
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (isRunning()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return std::nullopt;
        }
        std::this_thread::sleep_for(nap);
    }
    return status_;
}

} // namespace quorvel
