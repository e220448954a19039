#pragma once

#include "LaunchKit/AppProfile.h"
#include "LaunchKit/InstanceLauncher.h"
#include "LaunchKit/Launching/WindowIdentity.h"
#include "QuorvelApp/model/AppFacts.h"
#include "QuorvelApp/model/AppServices.h"

#include <QFuture>
#include <QObject>

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace quorvel {

class PlatformError;
struct EditedClone;
struct InstanceRecord;

/// The application's only model: the state that views show, and every action that changes something
/// outside the application. Main thread only. Blocking work runs in the background and finishes on
/// the main thread; futures fail with an `Error`. Constructing a model neither lists clones nor
/// scans apps.
class AppModel : public QObject {
    Q_OBJECT

public:
    explicit AppModel(AppServices services, QObject* parent = nullptr);
    ~AppModel() override;

    /// The clones in the registry's order.
    [[nodiscard]] const std::vector<InstanceRecord>& clones() const { return clones_; }
    /// The identifiers of the running wrappers, not of their targets.
    [[nodiscard]] const std::set<std::string>& runningBundleIds() const { return running_; }
    [[nodiscard]] const std::vector<InstalledApp>& catalog() const { return catalog_; }
    [[nodiscard]] bool catalogLoading() const { return catalogLoading_; }
    /// The known sandbox states by app path; entries are never removed.
    [[nodiscard]] const std::map<std::string, bool>& sandboxStatus() const { return sandbox_; }
    [[nodiscard]] const std::optional<std::string>& lastError() const { return lastError_; }
    [[nodiscard]] const std::optional<std::string>& statusMessage() const { return status_; }
    [[nodiscard]] bool startNewCloneRequested() const { return newCloneRequested_; }
    [[nodiscard]] const InstanceRegistry& registry() const { return services_.registry; }
    /// For the other classes of the model layer.
    [[nodiscard]] const AppServices& services() const { return services_; }

    /// Returns the clone with that identity, or null. Valid until the list changes.
    [[nodiscard]] const InstanceRecord* clone(const std::string& id) const;
    /// Returns whether the clone's wrapper was running at the last refresh.
    [[nodiscard]] bool isRunning(const InstanceRecord& clone) const;

    /// Sets the text of the error alert; std::nullopt clears it.
    void setLastError(std::optional<std::string> text);
    /// Sets the text of the status alert; std::nullopt clears it.
    void setStatusMessage(std::optional<std::string> text);
    /// Asks the window to open the new-clone sheet, or records that it did.
    void setStartNewCloneRequested(bool requested);

    /// Lists the clones again, then refreshes which of them run.
    void reload();
    /// Repairs the listed clones' entries in the user's menu, in the background.
    void repairMenu();
    /// Updates which clones are running.
    void refreshRunningState();

    /// Scans the installed apps, unless a scan is under way. A failure becomes `lastError`, and the
    /// catalog stays as it was.
    void loadCatalog();
    /// Determines whether the app is sandboxed, once per app in the model's lifetime. The future
    /// finishes when `sandboxStatus` has the answer.
    QFuture<void> ensureSandboxStatus(const InstalledApp& app);
    /// Returns the proposal for a clone of the app. Never fails; an unreadable app counts as not
    /// sandboxed.
    [[nodiscard]] QFuture<SandboxInfo> sandboxInfo(const InstalledApp& app);
    /// Launches the app with temporary homes, for at least nine seconds, and returns the resulting
    /// profile. Fails with `FactoryError` if the app is unreadable, otherwise with the probe's
    /// error.
    [[nodiscard]] QFuture<AppProfile> detectStrategy(const InstalledApp& app);

    /// Returns the app's name followed by " (2)" if no clone has that name, even if one has the
    /// result; otherwise followed by the first free number from 2 on.
    [[nodiscard]] std::string suggestedName(const InstalledApp& app) const;

    /// Opens the clone, or brings it to the front. A failure becomes `lastError`.
    void launch(const InstanceRecord& record);
    /// Creates a clone and returns its record, synthesised from the request if the registry does
    /// not list it. If `make` is set, it makes the clone instead of `AppServices::createWrapper`.
    /// Fails with the error of either; nothing has changed then.
    QFuture<InstanceRecord> createClone(const WrapperFactory::Request& request, bool launchAfter,
                                        const RequestPermissions& permissions = {},
                                        const AppServices::WrapperMaker& make = {});
    /// Deletes the clone before it returns. A failure becomes `lastError`, as does data that could
    /// not be removed. Returns whether everything was deleted.
    bool remove(const InstanceRecord& record, bool includingData);
    /// Moves the contents of the clone's own folders into the user's, and makes the clone share
    /// those. The outcome becomes `statusMessage`, or `lastError` if the clone can't be changed or
    /// something could not be moved; in that case the clone does not share the folders.
    QFuture<void> migrateSharedFolders(const InstanceRecord& record);
    /// Shows the clone's wrapper in the file manager. A failure becomes `lastError`.
    QFuture<void> reveal(const InstanceRecord& record);
    /// Shows any item in the file manager. A failure becomes `lastError`.
    QFuture<void> revealItem(const std::filesystem::path& item);

    /// Reads the clone for its editor. Fails with an `Error`.
    [[nodiscard]] QFuture<EditedClone> readForEditing(const InstanceRecord& record);
    /// Returns where the dock shows the clone's windows under the clone's own name.
    [[nodiscard]] QFuture<WindowGrouping> windowGrouping(const InstanceRecord& record);
    /// Returns whether sites can be asked for their title and icon.
    [[nodiscard]] bool canPreviewSites() const { return static_cast<bool>(services_.previewSite); }
    /// Asks a site for its title and icon, which becomes a file in `folder`. Fails with an `Error`.
    [[nodiscard]] QFuture<SitePreview> previewSite(const std::string& address,
                                                   const std::filesystem::path& folder);
    /// Returns whether the file is an icon container (".icns") with an image that can be decoded.
    [[nodiscard]] QFuture<bool> isIconFile(const std::filesystem::path& file);

    /// Returns the system's name and version: "macOS 14.5".
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
    void opened(const std::optional<PlatformError>& error);
    [[nodiscard]] InstanceRecord created(const std::filesystem::path& wrapper,
                                         const WrapperFactory::Request& request, bool launchAfter);
    void migrated(const InstanceRecord& record, const InstanceLauncher::Migration& migration,
                  const std::string& failure);

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
