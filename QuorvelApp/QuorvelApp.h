#pragma once

#include "QuorvelApp/AppModel.h"
#include "QuorvelApp/Updater.h"
#include "QuorvelApp/app/MainWindow.h"
#include "QuorvelApp/widgets/FilePanels.h"
#include "QuorvelApp/widgets/IconLoader.h"

#include <atomic>
#include <memory>

namespace quorvel {

/// The application: its one model, its updater and its window. Lives as long as the process.
class QuorvelApp {
public:
    explicit QuorvelApp(AppServices services = AppServices::ofTheSystem(),
                        std::unique_ptr<UpdateService> updates = nullptr);
    QuorvelApp(const QuorvelApp&) = delete;
    QuorvelApp& operator=(const QuorvelApp&) = delete;
    /// Lets a probe under way give up.
    ~QuorvelApp();

    /// Shows the window and brings it to the front.
    void start();

    [[nodiscard]] AppModel& model() { return model_; }
    [[nodiscard]] UpdaterController& updater() { return updater_; }
    [[nodiscard]] MainWindow& window() { return window_; }

private:
    std::shared_ptr<std::atomic<bool>> quitting_;
    AppModel model_;
    UpdaterController updater_;
    IconLoader icons_;
    MainWindow window_;
};

} // namespace quorvel
