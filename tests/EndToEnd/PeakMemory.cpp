#include "tests/EndToEnd/PeakMemory.h"

#include <cstdlib>
#include <fcntl.h>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quorvel::testing {
namespace {

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace

std::size_t peakMemoryOf(std::vector<std::string> command, const Environment& environment) {
    std::vector<std::string> settings;
    settings.reserve(environment.size());
    for (const auto& [name, value] : environment) {
        settings.push_back(name + "=" + value);
    }
    const std::vector<char*> arguments = pointersTo(command);
    const std::vector<char*> variables = pointersTo(settings);
    const pid_t child = ::fork();
    if (child == 0) {
        const int nowhere = ::open("/dev/null", O_RDWR);
        ::dup2(nowhere, STDOUT_FILENO);
        ::dup2(nowhere, STDERR_FILENO);
        ::execve(arguments.front(), arguments.data(), variables.data());
        std::_Exit(127);
    }
    int status = 0;
    rusage usage{};
    if (child < 0 || ::wait4(child, &status, 0, &usage) != child || !WIFEXITED(status) ||
        WEXITSTATUS(status) == 127) {
        throw std::runtime_error(command.front() + " was not run to its end");
    }
    constexpr std::size_t unit = 1024;
    return static_cast<std::size_t>(usage.ru_maxrss) * unit;
}

} // namespace quorvel::testing
