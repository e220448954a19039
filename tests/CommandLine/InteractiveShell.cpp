#include "tests/CommandLine/InteractiveShell.h"

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quorvel::testing {
namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::seconds patience{20};

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

[[noreturn]] void become(const std::vector<char*>& arguments, const std::vector<char*>& variables,
                         const char* folder, const char* terminal) {
    ::setsid();
    const int line = ::open(terminal, O_RDWR);
    ::ioctl(line, TIOCSCTTY, 0);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        ::dup2(line, stream);
    }
    if (line > STDERR_FILENO) {
        ::close(line);
    }
    if (::chdir(folder) == 0) {
        ::execve(arguments.front(), arguments.data(), variables.data());
    }
    std::_Exit(127);
}

} // namespace

InteractiveShell::InteractiveShell(const std::vector<std::string>& command,
                                   const Environment& environment,
                                   const std::filesystem::path& folder)
    : terminal_(::posix_openpt(O_RDWR | O_NOCTTY)) {
    if (terminal_ < 0 || ::grantpt(terminal_) != 0 || ::unlockpt(terminal_) != 0) {
        throw std::runtime_error("no pseudo-terminal is available");
    }
    ::fcntl(terminal_, F_SETFD, FD_CLOEXEC);
    winsize size{};
    size.ws_row = 50;
    size.ws_col = 200;
    ::ioctl(terminal_, TIOCSWINSZ, &size);
    const std::string line = ::ptsname(terminal_);
    std::vector<std::string> words = command;
    std::vector<std::string> settings;
    settings.reserve(environment.size());
    for (const auto& [name, value] : environment) {
        settings.push_back(name + "=" + value);
    }
    const std::vector<char*> arguments = pointersTo(words);
    const std::vector<char*> variables = pointersTo(settings);
    process_ = ::fork();
    if (process_ == 0) {
        become(arguments, variables, folder.c_str(), line.c_str());
    }
}

InteractiveShell::~InteractiveShell() {
    if (process_ > 0) {
        ::kill(process_, SIGKILL);
        ::waitpid(process_, nullptr, 0);
    }
    ::close(terminal_);
}

void InteractiveShell::type(std::string_view keys) const {
    while (!keys.empty()) {
        const ssize_t count = ::write(terminal_, keys.data(), keys.size());
        if (count <= 0) {
            throw std::runtime_error("the terminal takes no keys");
        }
        keys.remove_prefix(static_cast<std::size_t>(count));
    }
}

bool InteractiveShell::goOnUntil(const std::function<bool()>& done) {
    const auto end = Clock::now() + patience;
    while (!done()) {
        if (Clock::now() > end || !readMore()) {
            return done();
        }
    }
    return true;
}

bool InteractiveShell::readMore() {
    pollfd waiting{terminal_, POLLIN, 0};
    constexpr int milliseconds = 20;
    if (::poll(&waiting, 1, milliseconds) == 0) {
        return true;
    }
    std::array<char, 4096> buffer{};
    const ssize_t count = ::read(terminal_, buffer.data(), buffer.size());
    screen_.append(buffer.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
    return count > 0;
}

} // namespace quorvel::testing
