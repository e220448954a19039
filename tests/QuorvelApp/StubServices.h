#pragma once

#include "QuorvelApp/AppModel.h"
#include "QuorvelApp/Updater.h"
#include "tests/support/StubWorkspace.h"

#include <QThread>

#include <atomic>
#include <chrono>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quorvel::testing {

/// An updater that can check at first, and counts its checks.
class StubUpdates final : public UpdateService {
public:
    void observe(std::function<void(bool)> changed) override;
    void checkForUpdates() override { ++checks; }

    int checks = 0;
    std::function<void(bool)> canCheckChanged{};
};

/// Runs work on real threads, and remembers at which priority each piece was started.
class RecordingTasks final : public BackgroundTasks {
public:
    ~RecordingTasks() override;

    void start(TaskPriority priority, std::function<void()> work) override;

    std::vector<TaskPriority> priorities{};
    /// Holds the work back until `release`.
    bool holding = false;
    void release();

private:
    void run(TaskPriority priority, std::function<void()> work);

    std::vector<std::function<void()>> held_{};
    std::atomic<int> ended_ = 0;
    std::optional<ThreadPoolTasks> pool_{std::in_place};
};

/// A model whose services are stubs, which the test may change at any time.
class StubbedModel {
public:
    /// Clones are looked for in `folder`. A busy machine takes long to end one.
    explicit StubbedModel(const std::filesystem::path& folder,
                          std::chrono::milliseconds stopPatience = std::chrono::seconds(1));

    std::shared_ptr<StubWorkspace> workspace = std::make_shared<StubWorkspace>();
    std::vector<InstalledApp> installed{};
    std::atomic<int> scans = 0;
    std::optional<std::string> scanError{};
    std::set<std::string> sandboxed{}; ///< paths
    std::set<std::string> unreadable{};
    std::filesystem::path poisoned{}; ///< reading this app throws
    bool readsBundles = false;        ///< apps are what they are on disk
    std::atomic<int> bundlesRead = 0;
    /// The variables that apps need, by path.
    std::map<std::filesystem::path, std::map<std::string, std::string>> suggested{};
    std::function<std::filesystem::path(const WrapperFactory::Request&)> create{};
    std::vector<std::string> creationWarnings{};
    std::atomic<int> clonesInMenu = -1; ///< those that the menu was repaired for
    std::function<std::optional<ProbeResult>()> probe{};
    std::function<SitePreview(const std::string& address, const std::filesystem::path& folder)>
        previewSite{};
    std::atomic<int> sitesAsked = 0;
    std::vector<std::chrono::milliseconds> delays{};
    std::vector<std::function<void()>> delayed{}; ///< what waits for a delay to pass
    std::vector<QThread*> workedOn{};             ///< the thread of every background call

    [[nodiscard]] AppModel& model() { return *model_; }
    /// Ends the model while its services live on.
    void dropModel() { model_.reset(); }

private:
    void worked();
    std::optional<AppBundle> bundleAt(const std::filesystem::path& url);

    std::mutex mutex_{};

public:
    /// Declared after what its threads write to, so that it is destroyed first and waits for them.
    std::shared_ptr<RecordingTasks> tasks = std::make_shared<RecordingTasks>();

private:
    std::unique_ptr<AppModel> model_{};
};

/// Handles events until `predicate` holds. Returns false if it still does not at the deadline.
[[nodiscard]] bool eventually(const std::function<bool()>& predicate,
                              std::chrono::milliseconds deadline = std::chrono::seconds(20));

/// Handles events until the future has finished, then returns its result or throws its error.
template<typename Result>
Result resultOf(const QFuture<Result>& future) {
    if (!eventually([&] { return future.isFinished(); })) {
        throw std::runtime_error("the future did not finish");
    }
    if constexpr (std::is_void_v<Result>) {
        QFuture<Result>(future).waitForFinished();
    } else {
        return future.result();
    }
}

} // namespace quorvel::testing
