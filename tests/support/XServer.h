#pragma once

#include "Platform/processes/Process.h"
#include "tests/support/TemporaryHome.h"

#include <optional>
#include <string>
#include <vector>

namespace quorvel::testing {

/// A process that ends with this object.
class BackgroundProgram {
public:
    /// Its output is discarded.
    BackgroundProgram(const std::string& program, std::vector<std::string> arguments);
    explicit BackgroundProgram(Process process) : process_(std::move(process)) {}
    BackgroundProgram(const BackgroundProgram&) = delete;
    BackgroundProgram& operator=(const BackgroundProgram&) = delete;
    ~BackgroundProgram();

    [[nodiscard]] pid_t pid() const { return process_.identifier(); }

private:
    Process process_;
};

/// An X server without a screen and a window manager on it, which this process and its children use
/// while the object lives.
class XServer {
public:
    /// Returns the programs it needs that are not installed.
    [[nodiscard]] static std::vector<std::string>
    missingPrograms(const std::string& windowManager = "openbox");

    /// Throws `std::runtime_error` if something does not come up, and leaves nothing running then.
    explicit XServer(const std::string& windowManager = "openbox");

private:
    TemporaryFolder folder_;
    std::optional<BackgroundProgram> server_{};
    std::optional<ScopedEnvironment> display_{};
    std::optional<BackgroundProgram> windowManager_{};
};

} // namespace quorvel::testing
