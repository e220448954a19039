#include "Platform/processes/ProcessStat_linux.h"

#include "Platform/files/FileReading.h"

#include <charconv>
#include <dirent.h>
#include <memory>
#include <sstream>

namespace quorvel {
namespace {

void skip(std::istream& fields, int count) {
    std::string skipped;
    for (int field = 0; field < count; ++field) {
        fields >> skipped;
    }
}

} // namespace

std::optional<ProcessStat> processStat(pid_t pid) {
    constexpr std::size_t limit = 4096;
    const auto text = readFile("/proc/" + std::to_string(pid) + "/stat", limit);
    // The program's name, in parentheses, may contain anything, including parentheses.
    const std::size_t nameEnd = text ? text->rfind(')') : std::string::npos;
    if (nameEnd == std::string::npos) {
        return std::nullopt;
    }
    std::istringstream fields(text->substr(nameEnd + 1));
    ProcessStat stat;
    fields >> stat.state >> stat.parent;
    constexpr int betweenParentAndTimes = 9;
    constexpr int betweenTimesAndStart = 6;
    skip(fields, betweenParentAndTimes);
    std::uint64_t inUser = 0;
    std::uint64_t inSystem = 0;
    fields >> inUser >> inSystem;
    stat.cpuTime = inUser + inSystem;
    skip(fields, betweenTimesAndStart);
    fields >> stat.started;
    return fields ? std::optional(stat) : std::nullopt;
}

std::vector<pid_t> allProcesses() {
    std::vector<pid_t> found;
    const std::unique_ptr<DIR, int (*)(DIR*)> table(::opendir("/proc"), &::closedir);
    while (const dirent* entry = table ? ::readdir(table.get()) : nullptr) {
        const std::string_view name = entry->d_name;
        pid_t pid = 0;
        const auto result = std::from_chars(name.data(), name.data() + name.size(), pid);
        if (result.ec == std::errc{} && result.ptr == name.data() + name.size()) {
            found.push_back(pid);
        }
    }
    return found;
}

} // namespace quorvel
