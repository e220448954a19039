#include "QuorvelApp/AppModel.h"

#include "LaunchKit/HomeLock.h"
#include "LaunchKit/Icons/IcnsFile.h"
#include "LaunchKit/InstanceLauncher.h"
#include "LaunchKit/InstanceRecord.h"
#include "Platform/files/FileSystem.h"
#include "ProbeKit/ProfileGenerator.h"

#include <QImage>
#include <QPointer>

#include <algorithm>

namespace quorvel {
namespace {

using namespace std::chrono_literals;

// A wrapper needs a moment until it shows up among the running applications.
constexpr auto launchSettleTime = 800ms;

std::string quoted(const std::string& name) {
    return "“" + name + "”";
}

SandboxInfo proposal(const InstalledApp& app, bool sandboxed) {
    if (!sandboxed) {
        return {.sandboxed = false,
                .strategy = Strategy::homeOverride,
                .reason = quoted(app.name) + " isn’t sandboxed → Home override (A), the reliable "
                                             "path most apps use."};
    }
    return {.sandboxed = true,
            .strategy = Strategy::containerRedirect,
            .reason = quoted(app.name) +
                      " is sandboxed. macOS confines it to a shared, protected container that "
                      "can't be redirected, so two copies would share the same data and account. "
                      "Quorvel can still make a separate Dock launcher, but it won't isolate the "
                      "data."};
}

auto sandboxCheck(const AppServices& services, const InstalledApp& app) {
    return [read = services.readBundle, url = app.url] {
        try {
            const auto bundle = read(url);
            return bundle && bundle->sandboxed;
        } catch (const std::exception&) {
            return false; // as of any app that can't be read
        }
    };
}

template<typename Result>
struct Outcome {
    std::optional<Result> result{};
    std::string failure{}; ///< for the user, where there is no result
};

// Work whose failure the model tells by itself: nobody may ever read the future.
template<typename Work>
auto telling(Work work) {
    return [work = std::move(work)]() -> Outcome<std::invoke_result_t<Work>> {
        try {
            return {.result = work()};
        } catch (const std::exception& failure) {
            return {.failure = failure.what()};
        }
    };
}

// Holds none of the services that own the thread it runs on: whoever waits for that must be the
// last to let go of them.
struct Detection {
    decltype(AppServices::readBundle) readBundle;
    decltype(AppServices::probe) probe;
    std::string osSignature;
    InstalledApp app;
};

AppProfile detect(const Detection& services) {
    const InstalledApp& app = services.app;
    const auto bundle = services.readBundle(app.url);
    if (!bundle) {
        throw WrapperFactory::FactoryError::badTarget(app.url);
    }
    const auto result = services.probe(app.url);
    if (!result) {
        throw WrapperFactory::FactoryError::badTarget(app.url);
    }
    return ProfileGenerator::makeProfile(*bundle, *result, services.osSignature);
}

// File managers show the folder, or nothing, for an item that is gone.
void revealExisting(Workspace& workspace, const std::filesystem::path& bundle) {
    if (!itemOrLinkExists(bundle)) {
        throw PlatformError(std::make_error_code(std::errc::no_such_file_or_directory), bundle,
                            "shown");
    }
    workspace.reveal(bundle);
}

// What a clone that the registry does not list looks like, as far as its request tells.
InstanceRecord recordFrom(const WrapperFactory::Request& request,
                          const std::filesystem::path& wrapper) {
    InstanceConfig config;
    config.displayName = request.displayName;
    config.bundleId =
        request.bundleId.value_or(WrapperFactory::defaultBundleId(request.displayName));
    config.kind = request.kind;
    config.targetAppPath = request.targetApp ? request.targetApp->string() : std::string();
    config.instanceHome =
        request.instanceHome.value_or(WrapperFactory::defaultInstanceHome(request.displayName));
    config.strategy = request.strategy;
    return {.bundleURL = wrapper, .config = std::move(config)};
}

// "Moved 3 from Downloads into your shared folders. "; empty when nothing was moved.
std::string movedText(const std::map<std::string, int>& moved) {
    std::string parts;
    for (const std::string_view folder : InstanceLauncher::sharedUserFolders) {
        const auto count = moved.find(std::string(folder));
        if (count != moved.end() && count->second > 0) {
            parts += (parts.empty() ? "" : ", ") + std::to_string(count->second) + " from " +
                     std::string(folder);
        }
    }
    return parts.empty() ? parts : "Moved " + parts + " into your shared folders. ";
}

// An alert has room for a few; empty when nothing had to stay.
std::string unmovedText(const std::vector<InstanceLauncher::UnmovedItem>& items) {
    constexpr std::size_t shown = 5;
    if (items.empty()) {
        return {};
    }
    std::string text = "Not everything could be moved, so the clone still has folders of its own:";
    for (std::size_t index = 0; index < std::min(items.size(), shown); ++index) {
        text += "\n" + items[index].reason;
    }
    return items.size() <= shown
               ? text
               : text + "\n… and " + std::to_string(items.size() - shown) + " more";
}

std::string sharingText(const std::string& name, const std::map<std::string, int>& moved) {
    const std::string text = movedText(moved);
    if (text.empty()) {
        return quoted(name) + " now shares Downloads, Documents & Desktop with your Mac — nothing "
                              "needed moving.";
    }
    return text + quoted(name) + " now saves there.";
}

} // namespace

AppModel::AppModel(AppServices services, QObject* parent)
    : QObject(parent),
      services_(std::move(services)) {}

AppModel::~AppModel() = default;

const InstanceRecord* AppModel::clone(const std::string& id) const {
    const auto found = std::find_if(clones_.begin(), clones_.end(),
                                    [&](const auto& record) { return record.id() == id; });
    return found == clones_.end() ? nullptr : &*found;
}

bool AppModel::isRunning(const InstanceRecord& clone) const {
    return running_.contains(clone.config.bundleId);
}

void AppModel::setLastError(std::optional<std::string> text) {
    lastError_ = std::move(text);
    Q_EMIT lastErrorChanged();
}

void AppModel::setStatusMessage(std::optional<std::string> text) {
    status_ = std::move(text);
    Q_EMIT statusMessageChanged();
}

void AppModel::setStartNewCloneRequested(bool requested) {
    newCloneRequested_ = requested;
    Q_EMIT startNewCloneRequestedChanged();
}

void AppModel::reload() {
    clones_ = services_.registry.list();
    Q_EMIT clonesChanged();
    refreshRunningState();
}

void AppModel::refreshRunningState() {
    const RunningApplications snapshot = services_.workspace->runningApplications();
    std::set<std::string> running;
    for (const InstanceRecord& record : clones_) {
        if (snapshot.contains(record.config.bundleId)) {
            running.insert(record.config.bundleId);
        }
    }
    running_ = std::move(running);
    Q_EMIT runningBundleIdsChanged();
}

void AppModel::loadCatalog() {
    if (catalogLoading_) {
        return;
    }
    catalogLoading_ = true;
    Q_EMIT catalogLoadingChanged();
    services_.tasks->detached(TaskPriority::userInitiated, this, telling(services_.scanCatalog),
                              [this](Outcome<std::vector<InstalledApp>> outcome) {
                                  if (outcome.result) {
                                      catalog_ = std::move(*outcome.result);
                                      Q_EMIT catalogChanged();
                                  }
                                  catalogLoading_ = false;
                                  Q_EMIT catalogLoadingChanged();
                                  if (!outcome.result) {
                                      setLastError("Couldn't scan your apps: " + outcome.failure);
                                  }
                              });
}

QFuture<void> AppModel::ensureSandboxStatus(const InstalledApp& app) {
    if (sandbox_.contains(app.id())) {
        return QtFuture::makeReadyFuture();
    }
    return services_.tasks->detached(TaskPriority::utility, this, sandboxCheck(services_, app),
                                     [this, path = app.id()](bool sandboxed) {
                                         sandbox_[path] = sandboxed;
                                         Q_EMIT sandboxStatusChanged(path);
                                     });
}

QFuture<SandboxInfo> AppModel::sandboxInfo(const InstalledApp& app) {
    return services_.tasks->detached(TaskPriority::userInitiated, this,
                                     sandboxCheck(services_, app),
                                     [app](bool sandboxed) { return proposal(app, sandboxed); });
}

QFuture<AppProfile> AppModel::detectStrategy(const InstalledApp& app) {
    return services_.tasks->detached(
        TaskPriority::userInitiated, this,
        [detection = Detection{services_.readBundle, services_.probe,
                               osSignature(*services_.workspace), app}] {
            return detect(detection);
        },
        [](AppProfile profile) { return profile; });
}

std::string AppModel::suggestedName(const InstalledApp& app) const {
    std::set<std::string> names;
    for (const InstanceRecord& record : clones_) {
        names.insert(record.config.displayName);
    }
    const auto numbered = [&](int number) {
        return app.name + " (" + std::to_string(number) + ")";
    };
    int number = 2;
    // The first answer is given without a look at the clones' names, unless one is the app's own.
    if (names.contains(app.name)) {
        while (names.contains(numbered(number))) {
            ++number;
        }
    }
    return numbered(number);
}

void AppModel::launch(const InstanceRecord& record) {
    try {
        InstanceLauncher::prepareHome(record.config);
        openWrapper(record.bundleURL);
    } catch (const std::exception& failure) {
        opened(failure.what());
    }
}

void AppModel::openWrapper(const std::filesystem::path& wrapper) {
    // The answer comes on a thread of the platform's choice, perhaps after this model is gone.
    services_.workspace->openApplication(
        wrapper, true, [model = QPointer<AppModel>(this)](std::optional<PlatformError> error) {
            QMetaObject::invokeMethod(
                QCoreApplication::instance(),
                [model, error = std::move(error)] {
                    if (model) {
                        model->opened(error ? std::optional(error->description()) : std::nullopt);
                    }
                },
                Qt::QueuedConnection);
        });
}

void AppModel::opened(const std::optional<std::string>& failure) {
    if (failure) {
        setLastError("Couldn't launch: " + *failure);
    }
    services_.after(launchSettleTime, this, [this] { refreshRunningState(); });
}

QFuture<InstanceRecord> AppModel::createClone(const WrapperFactory::Request& request,
                                              bool launchAfter) {
    return services_.tasks->detached(
        TaskPriority::userInitiated, this,
        [create = services_.createWrapper, request] { return create(request); },
        [this, request, launchAfter](const std::filesystem::path& wrapper) {
            return created(wrapper, request, launchAfter);
        });
}

InstanceRecord AppModel::created(const std::filesystem::path& wrapper,
                                 const WrapperFactory::Request& request, bool launchAfter) {
    reload();
    const InstanceRecord* listed = clone(wrapper.string());
    InstanceRecord record = listed != nullptr ? *listed : recordFrom(request, wrapper);
    if (launchAfter) {
        launch(record);
    }
    return record;
}

void AppModel::remove(const InstanceRecord& record, bool includingData) {
    DeletedData data;
    try {
        data = services_.registry.remove(record, includingData);
    } catch (const std::exception& failure) {
        setLastError(std::string("Couldn't delete: ") + failure.what());
        return;
    }
    reload();
    if (data.isFailure()) {
        setLastError("Couldn't delete: " + data.description());
    }
}

QFuture<void> AppModel::migrateSharedFolders(const InstanceRecord& record) {
    return services_.tasks->detached(
        TaskPriority::userInitiated, this, telling([config = record.config] {
            requireUnusedHome(config);
            return InstanceLauncher::migrateSharedUserFolders(config.resolvedHome());
        }),
        [this, record](const Outcome<InstanceLauncher::Migration>& outcome) {
            if (outcome.result) {
                migrated(record, *outcome.result);
            } else {
                reload();
                setLastError("Couldn't move the files: " + outcome.failure);
            }
        });
}

void AppModel::migrated(const InstanceRecord& record,
                        const InstanceLauncher::Migration& migration) {
    std::string failure = unmovedText(migration.unmoved);
    if (!record.config.shareUserFolders && failure.empty()) {
        try {
            services_.registry.shareUserFolders(record);
        } catch (const std::exception& error) {
            failure = error.what();
        }
    }
    reload();
    if (failure.empty()) {
        setStatusMessage(sharingText(record.config.displayName, migration.moved));
    } else {
        setLastError(movedText(migration.moved) + failure);
    }
}

QFuture<void> AppModel::reveal(const InstanceRecord& record) {
    return services_.tasks->detached(
        TaskPriority::userInitiated, this,
        telling([workspace = services_.workspace, bundle = record.bundleURL] {
            revealExisting(*workspace, bundle);
            return true;
        }),
        [this](const Outcome<bool>& outcome) {
            if (!outcome.result) {
                setLastError(outcome.failure);
            }
        });
}

QFuture<bool> AppModel::isIconFile(const std::filesystem::path& file) {
    constexpr int side = 64; // of the picture that is decoded, where there are several
    return services_.tasks->detached(
        TaskPriority::userInitiated, this,
        [file] {
            const auto container = IcnsFile::read(file);
            return container && !container->nearest(side).isNull();
        },
        [](bool isOne) { return isOne; });
}

std::string AppModel::osSignature(const Workspace& workspace) {
    return operatingSystemSignature(workspace.operatingSystemVersion());
}

} // namespace quorvel
