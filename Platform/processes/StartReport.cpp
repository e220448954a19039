#include "Platform/processes/StartReport.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvel {
namespace {

using Clock = std::chrono::steady_clock;

// Message types. The sentence of a failure extends to the end of the pipe.
constexpr char announcement = '.';
constexpr char success = '+';
constexpr char failure = '-';

constexpr std::size_t longestSentence = 4096;

// The variable may be left over from another start, so that its number is another file here.
int inheritedPipe() {
    const char* value = std::getenv(StartReport::variable);
    if (value == nullptr) {
        return -1;
    }
    int descriptor = -1;
    const char* end = value + std::strlen(value);
    const auto result = std::from_chars(value, end, descriptor);
    struct stat status {};
    const bool isPipe = result.ec == std::errc{} && result.ptr == end &&
                        descriptor > STDERR_FILENO && ::fstat(descriptor, &status) == 0 &&
                        S_ISFIFO(status.st_mode) &&
                        (::fcntl(descriptor, F_GETFL) & O_ACCMODE) == O_WRONLY;
    return isPipe ? descriptor : -1;
}

void send(const FileHandle& pipe, const std::string& text) {
    if (pipe.descriptor() >= 0) {
        pipe.write(text);
    }
}

// Returns false at the end of the pipe.
bool readMore(int pipe, std::string& text) {
    std::array<char, longestSentence> bytes;
    ssize_t count = 0;
    do {
        count = ::read(pipe, bytes.data(), bytes.size());
    } while (count < 0 && errno == EINTR);
    if (count > 0) {
        text.append(bytes.data(), static_cast<std::size_t>(count));
    }
    return count > 0 && text.size() < longestSentence;
}

} // namespace

StartReport::StartReport() : pipe_(inheritedPipe()) {
    ::unsetenv(variable);
    if (pipe_.descriptor() >= 0) {
        ::fcntl(pipe_.descriptor(), F_SETFD, FD_CLOEXEC);
        // The program that opened us may have ended; we must not end because of that.
        std::signal(SIGPIPE, SIG_IGN);
    }
    send(pipe_, {announcement});
}

void StartReport::started() const {
    send(pipe_, {success});
}

void StartReport::failed(const std::string& sentence) const {
    send(pipe_, failure + sentence);
}

StartOutcome readStartReport(int pipe, int wake, std::chrono::milliseconds timeout,
                             std::chrono::milliseconds announcedTimeout) {
    const auto start = Clock::now();
    StartOutcome outcome;
    std::string text;
    while (true) {
        const auto limit = start + (outcome.announced ? announcedTimeout : timeout);
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(limit - Clock::now());
        std::array<pollfd, 2> files{{{pipe, POLLIN, 0}, {wake, POLLIN, 0}}};
        const int ready = ::poll(files.data(), files.size(),
                                 static_cast<int>(std::max<std::int64_t>(left.count(), 0)));
        if (ready < 0 && errno == EINTR) {
            continue;
        }
        if (files[0].revents == 0) {
            return outcome; // timeout, or woken
        }
        const bool ended = !readMore(pipe, text);
        if (text.starts_with(announcement)) {
            outcome.announced = true;
            text.erase(0, 1);
        }
        if (text.starts_with(success)) {
            outcome.kind = StartOutcome::Case::started;
            return outcome;
        }
        if (ended) {
            const bool failed = text.starts_with(failure);
            outcome.kind = failed ? StartOutcome::Case::failed : StartOutcome::Case::ended;
            outcome.sentence = failed ? text.substr(1) : std::string();
            return outcome;
        }
    }
}

} // namespace quorvel
