#include "Platform/processes/ProcessStat_linux.h"

#include "Platform/files/FileReading.h"

#include <algorithm>
#include <charconv>
#include <ctime>
#include <dirent.h>
#include <memory>
#include <string_view>
#include <unistd.h>

namespace quorvel {
namespace {

std::string_view nextWord(std::string_view& line) {
    line.remove_prefix(std::min(line.find_first_not_of(" \n"), line.size()));
    const std::string_view word = line.substr(0, line.find_first_of(" \n"));
    line.remove_prefix(word.size());
    return word;
}

void skipWords(std::string_view& line, int count) {
    for (int word = 0; word < count; ++word) {
        (void)nextWord(line);
    }
}

template<typename Number>
bool readNumber(std::string_view word, Number& number) {
    const auto result = std::from_chars(word.data(), word.data() + word.size(), number);
    return result.ec == std::errc{} && result.ptr == word.data() + word.size();
}

std::chrono::milliseconds fromTicks(std::uint64_t ticks) {
    const auto perSecond = static_cast<std::uint64_t>(::sysconf(_SC_CLK_TCK));
    return std::chrono::milliseconds(ticks * 1000 / perSecond);
}

} // namespace

// Without streams, which would make the runner larger by half.
std::optional<ProcessStat> processStat(pid_t pid) {
    constexpr std::size_t limit = 4096;
    const auto text = readFile("/proc/" + std::to_string(pid) + "/stat", limit);
    // The program's name, in parentheses, may contain anything, including parentheses.
    const std::size_t nameEnd = text ? text->rfind(')') : std::string::npos;
    if (nameEnd == std::string::npos) {
        return std::nullopt;
    }
    std::string_view rest = std::string_view(*text).substr(nameEnd + 1);
    ProcessStat stat;
    const std::string_view state = nextWord(rest);
    const bool hasParent = readNumber(nextWord(rest), stat.parent);
    constexpr int betweenParentAndTimes = 9;
    constexpr int betweenTimesAndStart = 6;
    skipWords(rest, betweenParentAndTimes);
    std::uint64_t inUser = 0;
    std::uint64_t inSystem = 0;
    const bool hasTimes =
        readNumber(nextWord(rest), inUser) && readNumber(nextWord(rest), inSystem);
    stat.cpuTime = fromTicks(inUser + inSystem);
    skipWords(rest, betweenTimesAndStart);
    const bool hasStart = readNumber(nextWord(rest), stat.started);
    stat.state = state.empty() ? '\0' : state.front();
    return hasParent && hasTimes && hasStart ? std::optional(stat) : std::nullopt;
}

std::chrono::milliseconds ageOf(const ProcessStat& stat) {
    timespec now{};
    ::clock_gettime(CLOCK_BOOTTIME, &now);
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec)) -
           fromTicks(stat.started);
}

std::string programOf(pid_t pid) {
    char path[4096];
    const std::string link = "/proc/" + std::to_string(pid) + "/exe";
    const ssize_t length = ::readlink(link.c_str(), path, sizeof path);
    return {path, length < 0 ? 0 : static_cast<std::size_t>(length)};
}

std::vector<pid_t> allProcesses() {
    std::vector<pid_t> found;
    const std::unique_ptr<DIR, int (*)(DIR*)> table(::opendir("/proc"), &::closedir);
    while (const dirent* entry = table ? ::readdir(table.get()) : nullptr) {
        const std::string_view name = entry->d_name;
        pid_t pid = 0;
        if (readNumber(name, pid)) {
            found.push_back(pid);
        }
    }
    return found;
}

} // namespace quorvel
