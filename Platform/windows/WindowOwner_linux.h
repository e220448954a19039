#pragma once

#include <set>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace quorvel {

/// What the windows of an application are recognized by.
struct WindowOwner {
    std::set<pid_t> processes{};
    /// The window's class or instance, for windows whose process can't be found out. May be empty.
    std::string windowClass{};

    /// Returns whether a window of that process is one of them; 0 means an unknown process.
    [[nodiscard]] bool hasProcess(pid_t process) const { return processes.contains(process); }
    /// Returns whether a window of that class is one of them.
    [[nodiscard]] bool hasClass(std::string_view name) const {
        return !windowClass.empty() && name == windowClass;
    }
};

} // namespace quorvel
