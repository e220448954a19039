#include "QuorvelApp/QuorvelApp.h"

namespace quorvel {

QuorvelApp::QuorvelApp(AppServices services, std::unique_ptr<UpdateService> updates)
    : quitting_(services.quitting),
      model_(std::move(services)),
      updater_(std::move(updates)),
      icons_(std::make_shared<ThreadPoolTasks>()),
      window_(model_, updater_, icons_) {}

QuorvelApp::~QuorvelApp() {
    if (quitting_) {
        quitting_->store(true);
    }
}

void QuorvelApp::start() {
    window_.show();
    window_.raise();
    window_.activateWindow();
}

} // namespace quorvel
