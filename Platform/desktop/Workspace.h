#pragma once

#include "Platform/desktop/RunningApplications.h"
#include "Platform/files/PlatformError.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace quorvel {

struct OperatingSystemVersion {
    int major = 0;
    int minor = 0;
    /// On Linux, the distribution with its version, such as "Debian GNU/Linux 12"; empty on macOS.
    std::string distribution{};
};

/// What the desktop does for us. Calls may come from any thread.
class Workspace {
public:
    /// Called once, from any thread; without an error when the application runs.
    using Completion = std::function<void(std::optional<PlatformError>)>;

    Workspace() = default;
    Workspace(const Workspace&) = delete;
    Workspace& operator=(const Workspace&) = delete;
    virtual ~Workspace() = default;

    /// Opens an application bundle without waiting for it. One that runs already is not started a
    /// second time. `activates` asks for its windows to come to the front.
    virtual void openApplication(const std::filesystem::path& bundle, bool activates,
                                 Completion completion) = 0;

    /// Shows the item in the file manager, selected in its folder. Throws `PlatformError` when no
    /// file manager answers.
    virtual void reveal(const std::filesystem::path& item) = 0;

    /// One look at what runs now.
    [[nodiscard]] virtual RunningApplications runningApplications() = 0;

    [[nodiscard]] virtual OperatingSystemVersion operatingSystemVersion() const = 0;
};

/// The system's own.
[[nodiscard]] std::unique_ptr<Workspace> makeSystemWorkspace();

} // namespace quorvel
