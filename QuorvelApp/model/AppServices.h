#pragma once

#include "LaunchKit/AppBundle.h"
#include "LaunchKit/AppCatalog.h"
#include "LaunchKit/Changes/RequestCheck.h"
#include "LaunchKit/InstanceRegistry.h"
#include "LaunchKit/Targets/SitePreview.h"
#include "LaunchKit/WrapperFactory.h"
#include "Platform/desktop/Workspace.h"
#include "ProbeKit/Models.h"
#include "QuorvelApp/model/BackgroundTasks.h"

#include <QObject>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quorvel {

struct InstanceRecord;

/// Everything the model does outside itself, passed in so that tests can observe and replace it.
/// `after` is called on the main thread, the other functions on worker threads.
struct AppServices {
    /// Calls `then` on `context`'s thread once `time` has passed, unless `context` is gone.
    using Delay = std::function<void(std::chrono::milliseconds time, QObject* context,
                                     std::function<void()> then)>;

    /// Makes a clone, calls `warn` about what went wrong besides, and returns the wrapper.
    using WrapperMaker = std::function<std::filesystem::path(const WrapperFactory::Request& request,
                                                             const RequestPermissions& permissions,
                                                             const WrapperFactory::Warning& warn)>;

    InstanceRegistry registry{};
    std::shared_ptr<Workspace> workspace{};
    std::shared_ptr<BackgroundTasks> tasks{};
    std::function<std::vector<InstalledApp>()> scanCatalog{};
    std::function<std::optional<AppBundle>(const std::filesystem::path&)> readBundle{};
    /// Returns the variables to propose for a clone of the app.
    std::function<std::map<std::string, std::string>(const AppBundle&)> suggestEnvironment{};
    /// Returns the new wrapper. Throws what the factory throws, and `InvalidRequest` rather than
    /// replace something that is not a clone, or a clone without permission.
    WrapperMaker createWrapper{};
    /// Brings the user's menu into line with the clones. Never throws.
    std::function<void(const std::vector<InstanceRecord>&)> repairMenu{};
    /// Returns std::nullopt if the bundle can't be probed at all; throws if the probe fails.
    std::function<std::optional<ProbeResult>(const std::filesystem::path&)> probe{};
    /// Asks a site for its title and icon, which becomes a file in that folder. Throws. Absent if
    /// nothing is installed that can.
    std::function<SitePreview(const std::string& address, const std::filesystem::path& folder)>
        previewSite{};
    Delay after{};
    /// How long clones may take that are asked to end.
    std::chrono::milliseconds stopPatience{std::chrono::seconds(10)};
    /// Set when the application quits, which cancels a probe and the question to a site. Never null
    /// in `system()`.
    std::shared_ptr<std::atomic<bool>> quitting{};

    /// Returns the services of this computer.
    [[nodiscard]] static AppServices system(ActivationTokenSource tokens = {});
};

} // namespace quorvel
