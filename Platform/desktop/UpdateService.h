#pragma once

#include <functional>
#include <memory>

namespace quorvel {

/// An update framework. Must be used on the main thread.
class UpdateService {
public:
    UpdateService() = default;
    UpdateService(const UpdateService&) = delete;
    UpdateService& operator=(const UpdateService&) = delete;
    virtual ~UpdateService() = default;

    /// Calls `changed` immediately with whether a check may start now, and again whenever that
    /// changes. Must be called at most once.
    virtual void observe(std::function<void(bool canCheck)> changed) = 0;

    /// Starts a check, which shows its result to the user.
    virtual void checkForUpdates() = 0;
};

/// Returns the system's update service, started. Returns null if the application has no update feed
/// or the update framework is missing or can't be loaded.
[[nodiscard]] std::unique_ptr<UpdateService> makeSystemUpdateService();

} // namespace quorvel
