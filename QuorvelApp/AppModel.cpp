#include "QuorvelApp/AppModel.h"

#include "LaunchKit/Homes/FolderSharing.h"
#include "LaunchKit/IconCheck.h"
#include "LaunchKit/InstanceLauncher.h"
#include "LaunchKit/InstanceRecord.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/PlatformError.h"
#include "Platform/windows/ActivationError.h"
#include "Presentation/CloneNaming.h"
#include "Presentation/JoinedText.h"
#include "Presentation/MigrationSummary.h"
#include "ProbeKit/ProfileGenerator.h"
#include "QuorvelApp/model/EditedClone.h"
#include "QuorvelApp/model/Outcome.h"
#include "QuorvelApp/model/Translated.h"

#include <QPointer>

#include <algorithm>

namespace quorvel {
namespace {

using namespace std::chrono_literals;

// It takes a moment for a wrapper to appear among the running applications.
constexpr auto launchSettleTime = 800ms;

// Holds none of the services that own the thread it runs on: the last owner of those must not be
// the worker thread.
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

struct CreatedWrapper {
    std::filesystem::path path{};
    std::vector<std::string> warnings{}; ///< for the user
};

// For a missing item, file managers show its folder or nothing.
void revealExisting(Workspace& workspace, const std::filesystem::path& item) {
    if (!itemOrLinkExists(item)) {
        throw PlatformError(std::make_error_code(std::errc::no_such_file_or_directory), item,
                            "shown");
    }
    workspace.reveal(item);
}

// Returns the record of a clone that the registry does not list, as far as its request
// determines it.
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

void AppModel::repairMenu() {
    services_.tasks->detached(
        TaskPriority::utility, this,
        [repair = services_.repairMenu, clones = clones_] {
            repair(clones);
            return true;
        },
        [](bool) {});
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
    services_.tasks->detached(
        TaskPriority::userInitiated, this, capturingErrors(services_.scanCatalog),
        [this](Outcome<std::vector<InstalledApp>> outcome) {
            if (outcome.result) {
                catalog_ = std::move(*outcome.result);
                Q_EMIT catalogChanged();
            }
            catalogLoading_ = false;
            Q_EMIT catalogLoadingChanged();
            if (!outcome.result) {
                setLastError(sentence(tr("Couldn't scan your apps: %1"), {outcome.failure}));
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
    return services_.tasks->detached(TaskPriority::userInitiated, this, factsCheck(services_, app),
                                     [app](const AppFacts& facts) { return proposal(app, facts); });
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
    return quorvel::suggestedName(app.name, names);
}

void AppModel::launch(const InstanceRecord& record) {
    try {
        InstanceLauncher::prepareHome(record.config);
        openWrapper(record.bundleURL);
    } catch (const std::exception& failure) {
        opened(PlatformError::withDescription(failure.what(), record.bundleURL));
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
                        model->opened(error);
                    }
                },
                Qt::QueuedConnection);
        });
}

void AppModel::opened(const std::optional<PlatformError>& error) {
    if (error) {
        // A clone that only stays in the background was launched before.
        setLastError(isActivationError(*error)
                         ? error->description()
                         : sentence(tr("Couldn't launch: %1"), {error->description()}));
    }
    services_.after(launchSettleTime, this, [this] { refreshRunningState(); });
}

QFuture<InstanceRecord> AppModel::createClone(const WrapperFactory::Request& request,
                                              bool launchAfter,
                                              const RequestPermissions& permissions,
                                              const AppServices::WrapperMaker& make) {
    return services_.tasks->detached(
        TaskPriority::userInitiated, this,
        [create = make ? make : services_.createWrapper, request, permissions] {
            CreatedWrapper made;
            made.path = create(request, permissions,
                               [&](const std::string& text) { made.warnings.push_back(text); });
            return made;
        },
        [this, request, launchAfter](const CreatedWrapper& made) {
            InstanceRecord record = created(made.path, request, launchAfter);
            if (!made.warnings.empty()) {
                setLastError(joined(made.warnings, "\n"));
            }
            return record;
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

bool AppModel::remove(const InstanceRecord& record, bool includingData) {
    DeletedData data;
    try {
        // A desktop's list of applications may take seconds to be made again.
        data = services_.registry.remove(record, includingData, [this](std::function<void()> work) {
            services_.tasks->start(TaskPriority::userInitiated, std::move(work));
        });
    } catch (const std::exception& failure) {
        setLastError(sentence(tr("Couldn't delete: %1"), {failure.what()}));
        return false;
    }
    reload();
    if (data.isFailure()) {
        setLastError(sentence(tr("Couldn't delete: %1"), {data.description()}));
    }
    return !data.isFailure();
}

QFuture<void> AppModel::migrateSharedFolders(const InstanceRecord& record) {
    return services_.tasks->detached(
        TaskPriority::userInitiated, this, capturingErrors([record, registry = services_.registry] {
            return moveToSharedFolders(registry, record);
        }),
        [this, record](const Outcome<FolderSharing>& outcome) {
            if (outcome.result) {
                const auto& [migration, failure] = *outcome.result;
                migrated(record, migration,
                         failure.empty() ? unmovedItems(migration, translated) : failure);
            } else {
                reload();
                setLastError(sentence(tr("Couldn't move the files: %1"), {outcome.failure}));
            }
        });
}

void AppModel::migrated(const InstanceRecord& record, const InstanceLauncher::Migration& migration,
                        const std::string& failure) {
    reload();
    if (failure.empty()) {
        setStatusMessage(sharingMessage(record.config.displayName, migration, translated));
    } else {
        setLastError(failureMessage(migration, failure, translated));
    }
}

QFuture<void> AppModel::reveal(const InstanceRecord& record) {
    return revealItem(record.bundleURL);
}

QFuture<void> AppModel::revealItem(const std::filesystem::path& item) {
    return services_.tasks->detached(TaskPriority::userInitiated, this,
                                     capturingErrors([workspace = services_.workspace, item] {
                                         revealExisting(*workspace, item);
                                         return true;
                                     }),
                                     [this](const Outcome<bool>& outcome) {
                                         if (!outcome.result) {
                                             setLastError(outcome.failure);
                                         }
                                     });
}

QFuture<EditedClone> AppModel::readForEditing(const InstanceRecord& record) {
    return services_.tasks->detached(
        TaskPriority::userInitiated, this,
        [wrapper = record.bundleURL] { return EditedClone::read(wrapper); },
        [](const EditedClone& clone) { return clone; });
}

QFuture<WindowGrouping> AppModel::windowGrouping(const InstanceRecord& record) {
    return services_.tasks->detached(
        TaskPriority::utility, this, [config = record.config] { return windowGroupingOf(config); },
        [](WindowGrouping grouping) { return grouping; });
}

QFuture<SitePreview> AppModel::previewSite(const std::string& address,
                                           const std::filesystem::path& folder) {
    return services_.tasks->detached(
        TaskPriority::userInitiated, this,
        [preview = services_.previewSite, address, folder] { return preview(address, folder); },
        [](const SitePreview& found) { return found; });
}

QFuture<bool> AppModel::isIconFile(const std::filesystem::path& file) {
    return services_.tasks->detached(
        TaskPriority::userInitiated, this, [file] { return isDrawableIcon(file); },
        [](bool isOne) { return isOne; });
}

std::string AppModel::osSignature(const Workspace& workspace) {
    return operatingSystemSignature(workspace.operatingSystemVersion());
}

} // namespace quorvel
