#pragma once

#include "LaunchKit/WebBadge.h"
#include "Platform/statusitem/StatusItem_linux.h"
#include "WebHost/Certificates/CertificateExceptions.h"
#include "WebHost/Downloads/DownloadList_linux.h"
#include "WebHost/Handover.h"
#include "WebHost/Notifications/DockBadge_linux.h"
#include "WebHost/Notifications/PageNotices_linux.h"
#include "WebHost/Pages/HostPage_linux.h"
#include "WebHost/Pages/LoadGate.h"
#include "WebHost/Settings/AppliedSettings_linux.h"
#include "WebHost/Settings/SettingsPanel_linux.h"
#include "WebHost/Settings/SiteDataList_linux.h"
#include "WebHost/Settings/SiteSettings.h"
#include "WebHost/Storage/WebHome.h"
#include "WebHost/Window/ColorSchemeFollower_linux.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quorvel {

/// Everything about a clone that its host needs.
struct WebHostOptions {
    std::string name{};
    std::string homeAddress{}; ///< empty if the clone has none
    std::string address{};     ///< to open instead; empty for none
    WebHome home;
    std::filesystem::path downloads{};
    bool keepsLinks = false;                 ///< links to other sites open in the clone
    std::string desktopId{};                 ///< its menu entry's file name
    std::string icon{};                      ///< the entry's
    std::optional<std::string> statusIcon{}; ///< the icon for the tray; absent: not there
    int listener = -1;                       ///< the socket for handovers; -1 for none
    GDBusConnection* bus = nullptr;
    const OutsideLinks* links = nullptr;
    std::string againstOpenGL{}; ///< why OpenGL does not draw; empty if it does
    std::function<void()> started{};
};

/// Shows a web clone: its window, its pop-ups, and what they do on the desktop.
class WebHost {
public:
    explicit WebHost(WebHostOptions options);
    WebHost(const WebHost&) = delete;
    WebHost& operator=(const WebHost&) = delete;
    ~WebHost();

    /// Shows the window until it is closed, or until SIGTERM, SIGINT or SIGHUP.
    void run();

private:
    void reportProblems() const;
    void openSession();
    void addBadgeScripts();
    void addServices();
    void addStatusItem();
    void openMainWindow();
    void applySettings();
    void settingsChanged();
    void permissionsTaken(const std::vector<PermissionStore::Answer>& taken);
    void showSettings();
    [[nodiscard]] DownloadList::Callbacks downloadCallbacks();
    [[nodiscard]] std::string firstAddress() const;
    [[nodiscard]] WebKitWebView* openPopup(HostPage& opener);
    [[nodiscard]] std::vector<std::unique_ptr<HostPage>>::iterator popupWith(WebKitWebView* view);
    void showPopupTitle(WebKitWebView* view);
    void closePopup(WebKitWebView* view);
    /// Returns the number of clicks and key presses in all windows.
    [[nodiscard]] std::uint64_t gestures() const;
    /// The title or the badge has changed. Shows it at once, but at most four times a second.
    void titleChanged();
    void showTitle();
    void checkSandbox();
    void handedOver(const WebHandover& handover);
    void saveState() const;
    /// Quits, unless the user wants to stay.
    void leave();
    void quit();

    WebHostOptions options_;
    PermissionStore permissions_;
    SiteSettingsStore siteSettings_;
    CertificateExceptions certificates_;
    GMainLoop* loop_ = g_main_loop_new(nullptr, FALSE);
    ObjectRef<WebKitNetworkSession> session_{};
    ObjectRef<WebKitWebContext> context_{};
    ObjectRef<WebKitUserContentManager> content_{};
    ObjectRef<WebKitSettings> settings_{};
    ColorSchemeFollower colors_;
    DockBadge badge_;
    std::unique_ptr<StatusItem> statusItem_{};
    PageNotices notices_;
    std::unique_ptr<DownloadList> downloads_{};
    PageServices services_{};
    std::unique_ptr<HostPage> main_{};
    LoadGate gate_; ///< of `main_`
    std::vector<std::unique_ptr<HostPage>> popups_{};
    std::unique_ptr<SiteDataList> siteData_{};
    std::unique_ptr<SettingsPanel> panel_{};
    PopupCap popupCap_{};
    std::uint64_t closedGestures_ = 0; ///< in windows that are closed
    WebBadgeState badgeState_{};
    bool isTitleOld_ = false; ///< what is shown is not what was reported last
    guint titleTimer_ = 0;
    bool isSandboxChecked_ = false;
    bool isLeavingAsked_ = false;
    std::vector<guint> sources_{};
};

} // namespace quorvel
