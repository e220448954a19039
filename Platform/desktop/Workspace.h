#pragma once

#include "Platform/desktop/RunningApplications.h"
#include "Platform/files/PlatformError.h"
#include "Platform/windows/ActivationTokens.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace quorvel {

/// The version of the operating system.
struct OperatingSystemVersion {
    int major = 0;
    int minor = 0;
    /// On Linux, the distribution and its version, such as "Debian GNU/Linux 12". Empty on macOS.
    std::string distribution{};
};

/// Desktop services. Thread-safe.
class Workspace {
public:
    /// Called once, on any thread. Without an error, the application is running.
    using Completion = std::function<void(std::optional<PlatformError>)>;

    Workspace() = default;
    Workspace(const Workspace&) = delete;
    Workspace& operator=(const Workspace&) = delete;
    virtual ~Workspace() = default;

    /// Opens an application bundle asynchronously. Does not start it again if it is running.
    /// `activates` brings its topmost window to the front. If that can't be done for an application
    /// that was running, the error is one of `isActivationError`.
    virtual void openApplication(const std::filesystem::path& bundle, bool activates,
                                 Completion completion) = 0;

    /// Shows the item in the file manager, selected in its folder. Throws `PlatformError` if no
    /// file manager replies.
    virtual void reveal(const std::filesystem::path& item) = 0;

    /// Returns a snapshot of the running applications.
    [[nodiscard]] virtual RunningApplications runningApplications() = 0;

    /// Returns the version of the running system.
    [[nodiscard]] virtual OperatingSystemVersion operatingSystemVersion() const = 0;
};

/// Returns the services of the running system. Applications are opened with tokens of `tokens`,
/// which is called by the thread that opens them.
[[nodiscard]] std::unique_ptr<Workspace> makeSystemWorkspace(ActivationTokenSource tokens = {});

} // namespace quorvel
