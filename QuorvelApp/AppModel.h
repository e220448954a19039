#pragma once

#include "LaunchKit/AppProfile.h"
#include "LaunchKit/InstanceLauncher.h"
#include "QuorvelApp/model/AppServices.h"

#include <QFuture>
#include <QObject>

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace quorvel {

struct InstanceRecord;

/// What `AppModel::sandboxInfo` proposes for an app.
struct SandboxInfo {
    bool sandboxed = false;
    Strategy strategy = Strategy::homeOverride;
    std::string reason{}; ///< a sentence for the user
};

/// The application's one model: what the views show, and every action that changes the world.
/// Belongs to the main thread. Work that blocks runs in the background and ends on the main thread;
/// a future's error is one of the kits' error types. Making a model does nothing else.
class AppModel : public QObject {
    Q_OBJECT

public:
    explicit AppModel(AppServices services, QObject* parent = nullptr);
    ~AppModel() override;

    /// In the registry's order.
    [[nodiscard]] const std::vector<InstanceRecord>& clones() const { return clones_; }
    /// Identifiers of the wrappers (not of their targets) that run.
    [[nodiscard]] const std::set<std::string>& runningBundleIds() const { return running_; }
    [[nodiscard]] const std::vector<InstalledApp>& catalog() const { return catalog_; }
    [[nodiscard]] bool catalogLoading() const { return catalogLoading_; }
    /// By app path; only grows.
    [[nodiscard]] const std::map<std::string, bool>& sandboxStatus() const { return sandbox_; }
    [[nodiscard]] const std::optional<std::string>& lastError() const { return lastError_; }
    [[nodiscard]] const std::optional<std::string>& statusMessage() const { return status_; }
    [[nodiscard]] bool startNewCloneRequested() const { return newCloneRequested_; }
    [[nodiscard]] const InstanceRegistry& registry() const { return services_.registry; }

    /// The clone with that identity; null when there is none. Valid until the list changes.
    [[nodiscard]] const InstanceRecord* clone(const std::string& id) const;
    [[nodiscard]] bool isRunning(const InstanceRecord& clone) const;

    void setLastError(std::optional<std::string> text);
    void setStatusMessage(std::optional<std::string> text);
    void setStartNewCloneRequested(bool requested);

    /// Lists the clones anew, then refreshes what runs.
    void reload();
    void refreshRunningState();

    /// Scans the installed apps; nothing happens while a scan is under way. A failure becomes
    /// `lastError`, and the catalog stays as it was.
    void loadCatalog();
    /// Finds out whether the app is sandboxed, once for the life of the model.
    QFuture<void> ensureSandboxStatus(const InstalledApp& app);
    /// The proposal for a clone of the app. Never fails; an unreadable app counts as not sandboxed.
    [[nodiscard]] QFuture<SandboxInfo> sandboxInfo(const InstalledApp& app);
    /// Launches the app under throw-away homes, for at least nine seconds. Fails with
    /// `FactoryError` for an unreadable app, else with the probe's error.
    [[nodiscard]] QFuture<AppProfile> detectStrategy(const InstalledApp& app);

    /// The app's name with the first free number behind it.
    [[nodiscard]] std::string suggestedName(const InstalledApp& app) const;

    /// Opens the clone, or brings it to the front. A failure becomes `lastError`.
    void launch(const InstanceRecord& record);
    /// Makes a clone and gives its record, made up from the request when the registry does not list
    /// it. Fails with the factory's error and changes nothing then.
    QFuture<InstanceRecord> createClone(const WrapperFactory::Request& request, bool launchAfter);
    /// A failure becomes `lastError`, as does data that could not be removed with its clone.
    void remove(const InstanceRecord& record, bool includingData);
    /// Moves what the clone saved in its own folders into the user's, and shares those from then
    /// on. The outcome becomes `statusMessage`, or `lastError` when the clone can't be changed or
    /// something had to stay; then the clone does not come to share the folders.
    QFuture<void> migrateSharedFolders(const InstanceRecord& record);
    /// Shows the clone's wrapper in the file manager. A failure becomes `lastError`.
    QFuture<void> reveal(const InstanceRecord& record);

    /// Whether the file is an icon container (".icns") with an image that can be decoded.
    [[nodiscard]] QFuture<bool> isIconFile(const std::filesystem::path& file);

    /// "macOS 14.5".
    [[nodiscard]] static std::string osSignature(const Workspace& workspace);

Q_SIGNALS:
    void clonesChanged();
    void runningBundleIdsChanged();
    void catalogChanged();
    void catalogLoadingChanged();
    void sandboxStatusChanged(const std::string& path);
    void lastErrorChanged();
    void statusMessageChanged();
    void startNewCloneRequestedChanged();

private:
    void openWrapper(const std::filesystem::path& wrapper);
    void opened(const std::optional<std::string>& failure);
    [[nodiscard]] InstanceRecord created(const std::filesystem::path& wrapper,
                                         const WrapperFactory::Request& request, bool launchAfter);
    void migrated(const InstanceRecord& record, const InstanceLauncher::Migration& migration);

    AppServices services_;
    std::vector<InstanceRecord> clones_;
    std::set<std::string> running_{};
    std::vector<InstalledApp> catalog_{};
    bool catalogLoading_ = false;
    std::map<std::string, bool> sandbox_{};
    std::optional<std::string> lastError_{};
    std::optional<std::string> status_{};
    bool newCloneRequested_ = false;
};

} // namespace quorvel
