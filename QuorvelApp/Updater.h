#pragma once

#include "Platform/desktop/UpdateService.h"

#include <QObject>

#include <memory>

namespace quorvel {

/// Checks for updates of the application. Without a service, which exists only if an update feed is
/// configured, no check can ever start.
class UpdaterController : public QObject {
    Q_OBJECT

public:
    explicit UpdaterController(std::unique_ptr<UpdateService> service = nullptr,
                               QObject* parent = nullptr);

    [[nodiscard]] bool canCheckForUpdates() const { return canCheck_; }
    [[nodiscard]] bool isConfigured() const { return service_ != nullptr; }

    /// Starts a check. Does nothing if no updater is configured.
    void checkForUpdates();

Q_SIGNALS:
    void canCheckForUpdatesChanged(bool canCheck);

private:
    std::unique_ptr<UpdateService> service_;
    bool canCheck_ = false;
};

} // namespace quorvel
