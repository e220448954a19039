#include "QuorvelApp/AppModel.h"

#include "LaunchKit/InstanceLauncher.h"
#include "ProbeKit/ProfileGenerator.h"

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
        const auto bundle = read(url);
        return bundle && bundle->sandboxed;
    };
}

AppProfile detect(const AppServices& services, const InstalledApp& app) {
    const auto bundle = services.readBundle(app.url);
    if (!bundle) {
        throw WrapperFactory::FactoryError::badTarget(app.url);
    }
    const auto result = services.probe(app.url);
    if (!result) {
        throw WrapperFactory::FactoryError::badTarget(app.url);
    }
    return ProfileGenerator::makeProfile(*bundle, *result,
                                         AppModel::osSignature(*services.workspace));
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

std::string movedText(const std::string& name, const std::map<std::string, int>& moved) {
    std::string parts;
    for (const std::string_view folder : InstanceLauncher::sharedUserFolders) {
        const auto count = moved.find(std::string(folder));
        if (count != moved.end() && count->second > 0) {
            parts += (parts.empty() ? "" : ", ") + std::to_string(count->second) + " from " +
                     std::string(folder);
        }
    }
    if (parts.empty()) {
        return quoted(name) + " now shares Downloads, Documents & Desktop with your Mac — nothing "
                              "needed moving.";
    }
    return "Moved " + parts + " into your shared folders. " + quoted(name) + " now saves there.";
}

} // namespace

AppModel::AppModel(AppServices services, QObject* parent)
    : QObject(parent),
      services_(std::move(services)) {}

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
    services_.tasks->detached(TaskPriority::userInitiated, this, services_.scanCatalog,
                              [this](std::vector<InstalledApp> apps) {
                                  catalog_ = std::move(apps);
                                  Q_EMIT catalogChanged();
                                  catalogLoading_ = false;
                                  Q_EMIT catalogLoadingChanged();
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
        [services = services_, app] { return detect(services, app); },
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
    if (record.config.kind == ShortcutKind::app) {
        const std::string home = record.config.resolvedHome();
        InstanceLauncher::ensureKeychainAccess(home);
        if (record.config.shareUserFolders) {
            InstanceLauncher::ensureSharedUserFolders(home);
        }
    }
    // The answer comes on a thread of the platform's choice, perhaps after this model is gone.
    services_.workspace->openApplication(
        record.bundleURL, true,
        [model = QPointer<AppModel>(this)](std::optional<PlatformError> error) {
            QMetaObject::invokeMethod(
                QCoreApplication::instance(),
                [model, error = std::move(error)] {
                    if (model) {
                        model->opened(error);
                    }
                },
                Qt::QueuedConnection);
        });
}

void AppModel::opened(const std::optional<PlatformError>& error) {
    if (error) {
        setLastError("Couldn't launch: " + error->description());
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
    try {
        services_.registry.remove(record, includingData);
    } catch (const std::exception& failure) {
        setLastError(std::string("Couldn't delete: ") + failure.what());
        return;
    }
    reload();
}

QFuture<void> AppModel::migrateSharedFolders(const InstanceRecord& record) {
    return services_.tasks->detached(
        TaskPriority::userInitiated, this,
        [home = record.config.resolvedHome()] {
            return InstanceLauncher::migrateSharedUserFolders(home);
        },
        [this, record](const std::map<std::string, int>& moved) { migrated(record, moved); });
}

void AppModel::migrated(const InstanceRecord& record, const std::map<std::string, int>& moved) {
    if (!record.config.shareUserFolders) {
        services_.registry.update(record,
                                  [](InstanceConfig& config) { config.shareUserFolders = true; });
    }
    reload();
    setStatusMessage(movedText(record.config.displayName, moved));
}

QFuture<void> AppModel::reveal(const InstanceRecord& record) {
    return services_.tasks->detached(
        TaskPriority::userInitiated, this,
        [workspace = services_.workspace,
         bundle = record.bundleURL]() -> std::optional<std::string> {
            try {
                workspace->reveal(bundle);
                return std::nullopt;
            } catch (const std::exception& failure) {
                return failure.what();
            }
        },
        [this](const std::optional<std::string>& error) {
            if (error) {
                setLastError(error);
            }
        });
}

std::string AppModel::osSignature(const Workspace& workspace) {
    return operatingSystemSignature(workspace.operatingSystemVersion());
}

} // namespace quorvel
