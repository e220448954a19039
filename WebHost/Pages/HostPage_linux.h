#pragma once

#include "WebHost/Certificates/CertificateGuard_linux.h"
#include "WebHost/Links/LinkRouting.h"
#include "WebHost/Links/OutsideLinks_linux.h"
#include "WebHost/Pages/CloseGuard.h"
#include "WebHost/Pages/FloodCaps.h"
#include "WebHost/Pages/PageDialogs_linux.h"
#include "WebHost/Pages/PageMenu_linux.h"
#include "WebHost/Pages/RequestedLoad.h"
#include "WebHost/Pages/ShownAddress.h"
#include "WebHost/Questions/PagePasswords_linux.h"
#include "WebHost/Questions/PagePermissions_linux.h"
#include "WebHost/Questions/PermissionQuestions.h"
#include "WebHost/Settings/SiteSettings.h"
#include "WebHost/Window/HostWindow_linux.h"

#include <webkit/webkit.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quorvel {

/// What all pages of a clone share.
struct PageServices {
    std::string name{};        ///< the clone's
    std::string homeAddress{}; ///< empty if the clone has none
    std::string iconName{};
    bool keepsLinks = false; ///< links to other sites open in the clone
    SiteOf siteOf{};
    PermissionStore* permissions = nullptr;
    CertificateExceptions* certificates = nullptr;
    const SiteSettingsStore* settings = nullptr;
    const OutsideLinks* links = nullptr;
    /// Opens a window for a page that asks for one. Returns its view; null if it may not.
    std::function<WebKitWebView*(class HostPage& opener)> openPopup{};
    std::function<void(WebKitNotification*)> notify{};
    std::function<void()> loaded{}; ///< a page has finished loading
    std::function<void()> quit{};   ///< the user wants to end the clone
};

/// A page in its window, and what becomes of its requests.
class HostPage {
public:
    struct Callbacks {
        std::function<void()> home{};     ///< absent in pop-ups
        std::function<void()> settings{}; ///< absent in pop-ups
        std::function<void()> titleChanged{};
        std::function<void()> closed{}; ///< destroys this
    };

    /// `view` is new and belongs to the page's window from now on.
    HostPage(WebKitWebView* view, const PageServices& services, Callbacks callbacks,
             const WindowState& state);
    HostPage(const HostPage&) = delete;
    HostPage& operator=(const HostPage&) = delete;
    ~HostPage();

    /// Loads the page at the address, or says that the clone has none if it is empty.
    void load(const std::string& address);
    /// The user closes it. The page may ask whether to leave it; one that hangs can't, and is
    /// closed at the second attempt.
    void close();
    /// The user has taken these answers back. What was asked for may be asked for again.
    void permissionsTaken(const std::vector<PermissionStore::Answer>& taken);
    /// Returns the window that shows the page.
    [[nodiscard]] HostWindow& window() { return window_; }
    [[nodiscard]] WebKitWebView* view() const { return view_; }
    [[nodiscard]] bool isPopup() const { return !callbacks_.home; }
    /// Returns the address of the page that is shown, and not of one that is on its way.
    [[nodiscard]] const std::string& address() const { return shown_.text(); }
    [[nodiscard]] std::string title() const;

private:
    static gboolean policyWanted(WebKitWebView* view, WebKitPolicyDecision* decision,
                                 WebKitPolicyDecisionType type, gpointer self);
    static WebKitWebView* created(WebKitWebView* view, WebKitNavigationAction* action,
                                  gpointer self);
    static gboolean loadFailed(WebKitWebView* view, WebKitLoadEvent event, char* address,
                               GError* error, gpointer self);
    [[nodiscard]] bool loadsAgain(const std::string& address, const GError& error);
    static void crashed(WebKitWebView* view, WebKitWebProcessTerminationReason reason,
                        gpointer self);
    static void loadChanged(WebKitWebView* view, WebKitLoadEvent event, gpointer self);

    void connect();
    void committed();
    void repeatIfDropped();
    /// Calls this once the page has reacted to everything so far, unless it is destroyed before.
    void afterReaction(std::function<void()> act);
    void closedByEngine();
    void hintIfItHangs();
    void leavingAnswered(bool leaves);
    void notificationWanted(WebKitNotification* notification);
    void openOther(const std::string& address);
    void openOutside(const std::string& address);
    void updateLocation();
    [[nodiscard]] bool routes(WebKitNavigationAction* action, bool isNewWindow);
    [[nodiscard]] bool takesResponse(WebKitResponsePolicyDecision* decision) const;
    void showStatus(const std::string& html, const std::string& address);

    WebKitWebView* view_;
    const PageServices& services_;
    Callbacks callbacks_;
    ShownAddress shown_{};
    PageVisit visit_{};
    CloseGuard closeGuard_{};
    ObjectRef<GCancellable> life_; ///< cancelled at the end
    guint hint_ = 0;               ///< the timer that tells the user how to close a page that hangs
    HostWindow window_;
    PageDialogs dialogs_;
    PermissionQuestions questions_;
    PagePermissions permissions_;
    CertificateGuard certificates_;
    PagePasswords passwords_;
    PageMenu menu_;
    RateCap reloads_ = reloadCap();
    RequestedLoad requested_{};
    guint repetition_ = 0;    ///< the timer of a load that the engine has perhaps dropped
    std::string awaited_{};   ///< the address of a page that is on its way
    std::string cancelled_{}; ///< the last address whose connection was cancelled
};

} // namespace quorvel
