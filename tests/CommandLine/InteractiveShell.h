#pragma once

#include "Platform/processes/Process.h"

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace quorvel::testing {

/// A program on its own pseudo-terminal, as a user runs it. The destructor ends it.
class InteractiveShell {
public:
    /// `command` starts with a path. Throws `std::runtime_error` if no pseudo-terminal is
    /// available.
    InteractiveShell(const std::vector<std::string>& command, const Environment& environment,
                     const std::filesystem::path& folder);
    InteractiveShell(const InteractiveShell&) = delete;
    InteractiveShell& operator=(const InteractiveShell&) = delete;
    ~InteractiveShell();

    /// Presses these keys: "\t" is Tab, "\r" is Return.
    void type(std::string_view keys) const;

    /// Reads the program's output until `done` holds. Returns false if that takes more than 20
    /// seconds or the program ends before.
    [[nodiscard]] bool goOnUntil(const std::function<bool()>& done);

    /// Everything that has appeared so far.
    [[nodiscard]] const std::string& screen() const { return screen_; }

private:
    bool readMore();

    int terminal_ = -1;
    pid_t process_ = -1;
    std::string screen_{};
};

} // namespace quorvel::testing
