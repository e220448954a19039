#pragma once

#include <functional>
#include <memory>

namespace quorvel {

/// An update framework: tells whether a check may start now, and starts one. Belongs to the main
/// thread.
class UpdateService {
public:
    UpdateService() = default;
    UpdateService(const UpdateService&) = delete;
    UpdateService& operator=(const UpdateService&) = delete;
    virtual ~UpdateService() = default;

    /// Calls `changed` with the flag's value at once, and with every new one as long as the service
    /// lives. To be called once.
    virtual void observe(std::function<void(bool canCheck)> changed) = 0;
    virtual void checkForUpdates() = 0;
};

/// The system's own, started; null where the application names no update feed, where there is no
/// update framework, or where it can't be loaded.
[[nodiscard]] std::unique_ptr<UpdateService> makeSystemUpdateService();

} // namespace quorvel
