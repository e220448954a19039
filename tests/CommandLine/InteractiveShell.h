#pragma once

#include "Platform/processes/Process.h"

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace quorvel::testing {

/// A program on a terminal of its own, as a person has it. Ended at the latest when this goes.
class InteractiveShell {
public:
    /// `command` starts with a path. Throws `std::runtime_error` when there is no terminal to have.
    InteractiveShell(const std::vector<std::string>& command, const Environment& environment,
                     const std::filesystem::path& folder);
    InteractiveShell(const InteractiveShell&) = delete;
    InteractiveShell& operator=(const InteractiveShell&) = delete;
    ~InteractiveShell();

    /// Presses these keys: "\t" is Tab, "\r" is Return.
    void type(std::string_view keys);

    /// Lets the program go on until `done` holds; false when that takes more than 20 seconds or the
    /// program ends before.
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
