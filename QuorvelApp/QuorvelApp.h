#pragma once

#include "QuorvelApp/AppModel.h"
#include "QuorvelApp/Updater.h"
#include "QuorvelApp/app/MainWindow.h"
#include "QuorvelApp/widgets/IconLoader.h"
#include "QuorvelApp/widgets/SystemFilePanels.h"

#include <atomic>
#include <memory>

namespace quorvel {

/// The application: its only model, its updater and its window. Lives as long as the process.
class QuorvelApp {
public:
    explicit QuorvelApp(AppServices services = AppServices::system(),
                        std::unique_ptr<UpdateService> updates = nullptr);
    QuorvelApp(const QuorvelApp&) = delete;
    QuorvelApp& operator=(const QuorvelApp&) = delete;
    /// Cancels a probe, a question to a site, and the waiting for a clone to end.
    ~QuorvelApp();

    /// Shows the window and brings it to the front.
    void start();

    /// Returns the model, which lives as long as the application.
    [[nodiscard]] AppModel& model() { return model_; }
    /// Returns the updater, which lives as long as the application.
    [[nodiscard]] UpdaterController& updater() { return updater_; }
    /// Returns the window, which lives as long as the application.
    [[nodiscard]] MainWindow& window() { return window_; }

private:
    std::shared_ptr<std::atomic<bool>> quitting_;
    AppModel model_;
    UpdaterController updater_;
    IconLoader icons_;
    MainWindow window_;
};

} // namespace quorvel
