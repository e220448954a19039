#pragma once

#include "Platform/desktop/UpdateService.h"

#include <QObject>

#include <memory>

namespace quorvel {

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
