#include "QuorvelApp/Updater.h"

namespace quorvel {

UpdaterController::UpdaterController(std::unique_ptr<UpdateService> service, QObject* parent)
    : QObject(parent),
      service_(std::move(service)) {
    if (service_) {
        service_->observe([this](bool canCheck) {
            canCheck_ = canCheck;
            Q_EMIT canCheckForUpdatesChanged(canCheck);
        });
    }
}

void UpdaterController::checkForUpdates() {
    if (service_) {
        service_->checkForUpdates();
    }
}

} // namespace quorvel
