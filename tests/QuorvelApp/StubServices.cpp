#include "tests/QuorvelApp/StubServices.h"

#include "LaunchKit/InstanceRecord.h"
#include "tests/support/Waiting.h"

#include <QCoreApplication>

#include <algorithm>
#include <thread>

namespace quorvel::testing {

void StubUpdates::observe(std::function<void(bool)> changed) {
    canCheckChanged = std::move(changed);
    canCheckChanged(true);
}

// The thread sanitizer can't see that Qt's pool waits for its threads; it sees an atomic read.
RecordingTasks::~RecordingTasks() {
    pool_.reset();
    (void)ended_.load();
}

void RecordingTasks::run(TaskPriority priority, std::function<void()> work) {
    pool_->start(priority, [this, work = std::move(work)]() mutable {
        work();
        work = nullptr;
        ++ended_;
    });
}

void RecordingTasks::start(TaskPriority priority, std::function<void()> work) {
    priorities.push_back(priority);
    if (holding) {
        held_.push_back(std::move(work));
    } else {
        run(priority, std::move(work));
    }
}

void RecordingTasks::release() {
    holding = false;
    for (auto& work : held_) {
        run(TaskPriority::userInitiated, std::move(work));
    }
    held_.clear();
}

StubbedModel::StubbedModel(const std::filesystem::path& folder,
                           std::chrono::milliseconds stopPatience) {
    AppServices services;
    services.registry = InstanceRegistry({folder});
    services.workspace = workspace;
    services.tasks = tasks;
    services.scanCatalog = [this] {
        worked();
        ++scans;
        if (scanError) {
            throw std::runtime_error(*scanError);
        }
        return installed;
    };
    services.readBundle = [this](const std::filesystem::path& url) { return bundleAt(url); };
    services.suggestEnvironment = [this](const AppBundle& app) {
        worked();
        return suggested.contains(app.url) ? suggested.at(app.url)
                                           : std::map<std::string, std::string>{};
    };
    services.createWrapper = [this](const WrapperFactory::Request& request,
                                    const RequestPermissions& permissions,
                                    const WrapperFactory::Warning& warn) {
        worked();
        requireReplaceable(WrapperFactory::wrapperURL(request), permissions);
        std::for_each(creationWarnings.begin(), creationWarnings.end(), warn);
        return create(request);
    };
    services.repairMenu = [this](const std::vector<InstanceRecord>& clones) {
        clonesInMenu = static_cast<int>(clones.size());
    };
    services.probe = [this](const std::filesystem::path&) {
        worked();
        return probe();
    };
    services.previewSite = [this](const std::string& address, const std::filesystem::path& icons) {
        ++sitesAsked;
        return previewSite(address, icons);
    };
    services.after = [this](std::chrono::milliseconds time, QObject*, std::function<void()> then) {
        delays.push_back(time);
        delayed.push_back(std::move(then));
    };
    services.stopPatience = stopPatience;
    model_ = std::make_unique<AppModel>(std::move(services));
}

std::optional<AppBundle> StubbedModel::bundleAt(const std::filesystem::path& url) {
    worked();
    ++bundlesRead;
    if (url == poisoned) {
        throw std::runtime_error("unreadable");
    }
    if (unreadable.contains(url.string())) {
        return std::nullopt;
    }
    if (readsBundles) {
        return AppBundle::read(url, noEntitlements);
    }
    return AppBundle{.url = url,
                     .bundleId = "com.example." + url.stem().string(),
                     .executableName = url.stem().string(),
                     .sandboxed = sandboxed.contains(url.string())};
}

void StubbedModel::worked() {
    const std::lock_guard lock(mutex_);
    workedOn.push_back(QThread::currentThread());
}

bool eventually(const std::function<bool()>& predicate, std::chrono::milliseconds deadline) {
    return waitUntil(
        [&] {
            QCoreApplication::processEvents();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            return predicate();
        },
        deadline);
}

} // namespace quorvel::testing
