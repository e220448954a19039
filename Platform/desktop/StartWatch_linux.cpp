#include "Platform/desktop/StartWatch_linux.h"

#include "Base/CloneLayout.h"

#include <cerrno>
#include <csignal>
#include <sys/eventfd.h>
#include <sysexits.h>
#include <system_error>

namespace quorvel {
namespace {

// A process closes its files slightly before it can be waited for.
constexpr std::chrono::seconds exitTimeout{1};

// Whether that status indicates a crash or a program that could not be run.
bool indicatesFailure(int status) {
    constexpr int cantBeRun = 126;
    constexpr int notFound = 127;
    constexpr int signalled = 128;
    switch (status) {
    case cantBeRun:
    case notFound:
    case signalled + SIGILL:
    case signalled + SIGABRT:
    case signalled + SIGBUS:
    case signalled + SIGFPE:
    case signalled + SIGSEGV:
    case signalled + SIGSYS:
        return true;
    default:
        return status >= EX__BASE && status <= EX__MAX;
    }
}

std::string reasonFor(int status) {
    constexpr int signalled = 128;
    if (status > signalled) {
        return "it was ended immediately by signal " + std::to_string(status - signalled);
    }
    return "it ended immediately with status " + std::to_string(status);
}

// Without a report, only some statuses prove a failure: a target may end quickly.
std::optional<PlatformError> failureAtEnd(Process& process, bool announced,
                                          const std::filesystem::path& bundle) {
    const std::optional<int> status = process.waitUntilExit(exitTimeout);
    if (!status || (!announced && !indicatesFailure(*status))) {
        return std::nullopt;
    }
    return PlatformError::because(reasonFor(*status), bundle, "opened");
}

std::optional<PlatformError> failureOf(StartedProgram& program, int wake,
                                       const std::filesystem::path& bundle) {
    const StartOutcome outcome = outcomeOf(program, wake);
    switch (outcome.kind) {
    case StartOutcome::Case::failed:
        return PlatformError::withDescription(outcome.sentence, bundle);
    case StartOutcome::Case::ended:
        return failureAtEnd(program.process, outcome.announced, bundle);
    case StartOutcome::Case::started:
    case StartOutcome::Case::nothingHeard:
        break;
    }
    return std::nullopt;
}

} // namespace

StartedProgram startProgram(const std::filesystem::path& executable, const Environment& variables) {
    Process::Options options;
    options.executable = executable;
    options.environment = variables;
    options.environment->merge(currentEnvironment());
    options.directory = "/"; // as a desktop does; our folder may be removed
    if (executable.filename() == wrapperExecutableName) {
        return startReporting(options);
    }
    options.standardOutput = Process::Discard{};
    options.standardError = Process::Discard{};
    options.detached = true;
    return {Process::run(options), FileHandle(-1)};
}

bool startAndWait(const std::filesystem::path& executable, const Environment& variables) {
    if (executable.filename() != wrapperExecutableName) {
        return false;
    }
    StartedProgram program = startProgram(executable, variables);
    const StartOutcome outcome = outcomeOf(program);
    program.process.detach();
    return outcome.kind == StartOutcome::Case::started;
}

StartWatch::StartWatch() : wake_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

StartWatch::~StartWatch() {
    ::eventfd_write(wake_.descriptor(), 1);
    for (Waiting& waiting : waiting_) {
        if (waiting.thread.joinable()) {
            waiting.thread.join();
        }
    }
}

void StartWatch::watch(StartedProgram program, const std::filesystem::path& bundle,
                       Workspace::Completion completion) {
    if (program.reports.descriptor() < 0) {
        program.process.detach();
        completion(std::nullopt);
        return;
    }
    Waiting* waiting = nullptr;
    {
        const std::lock_guard guard(mutex_);
        joinFinished();
        waiting =
            &waiting_.emplace_back(Waiting{std::move(program), bundle, std::move(completion)});
        try {
            waiting->thread = std::thread([this, waiting] { waitForReport(*waiting); });
            return;
        } catch (const std::system_error&) {
            // Without a thread, the caller has to wait.
        }
    }
    waitForReport(*waiting);
}

void StartWatch::waitForReport(Waiting& waiting) {
    const auto failure = failureOf(waiting.program, wake_.descriptor(), waiting.bundle);
    waiting.program.process.detach();
    waiting.completion(failure);
    const std::lock_guard guard(mutex_);
    waiting.over = true;
}

void StartWatch::joinFinished() {
    for (auto waiting = waiting_.begin(); waiting != waiting_.end();) {
        if (!waiting->over) {
            ++waiting;
            continue;
        }
        if (waiting->thread.joinable()) {
            waiting->thread.join();
        }
        waiting = waiting_.erase(waiting);
    }
}

} // namespace quorvel
