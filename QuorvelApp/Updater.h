#pragma once

#include <QObject>

#include <functional>
#include <memory>

namespace quorvel {

/// An update framework: tells whether a check may start now, and starts one.
class UpdateService {
public:
    UpdateService() = default;
    UpdateService(const UpdateService&) = delete;
    UpdateService& operator=(const UpdateService&) = delete;
    virtual ~UpdateService() = default;

    /// Calls `changed` with the flag's value at once, and with every new one.
    virtual void observe(std::function<void(bool canCheck)> changed) = 0;
    virtual void checkForUpdates() = 0;
};

/// The application's way to updates. Without a service, which is there only where an update feed is
/// configured, no check can ever start.
class UpdaterController : public QObject {
    Q_OBJECT

public:
    explicit UpdaterController(std::unique_ptr<UpdateService> service = nullptr,
                               QObject* parent = nullptr);

    [[nodiscard]] bool canCheckForUpdates() const { return canCheck_; }
    [[nodiscard]] bool isConfigured() const { return service_ != nullptr; }

    /// Nothing happens when no updater is configured.
    void checkForUpdates();

Q_SIGNALS:
    void canCheckForUpdatesChanged(bool canCheck);

private:
    std::unique_ptr<UpdateService> service_;
    bool canCheck_ = false;
};

} // namespace quorvel
