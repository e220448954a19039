#pragma once

#include "WebHost/Certificates/CertificateExceptions.h"
#include "WebHost/Links/LinkRouting.h"
#include "WebHost/Links/OutsideOpener_macos.h"
#include "WebHost/Pages/FloodCaps.h"
#include "WebHost/Pages/RequestedLoad.h"
#include "WebHost/Pages/ShownAddress.h"
#include "WebHost/Questions/PasswordQuestions.h"
#include "WebHost/Questions/PermissionQuestions.h"
#include "WebHost/Window/HostWindow_macos.h"

#import <WebKit/WebKit.h>

#include <functional>
#include <memory>
#include <string>

namespace quorvel {

/// What all pages of a clone share.
struct PageServices {
    std::string name{};        ///< the clone's
    std::string homeAddress{}; ///< empty if it has none
    bool keepsLinks = false;   ///< links to other sites open in the clone
    SiteOf siteOf{};
    PermissionStore* _Nullable permissions = nullptr;
    CertificateExceptions* _Nullable certificates = nullptr;
    const SiteSettingsStore* _Nullable settings = nullptr;
    const OutsideOpener* _Nullable links = nullptr;
    id<WKDownloadDelegate> _Nullable downloads = nil;
    /// Returns the view of a new pop-up, which must have that configuration; nil if there are too
    /// many.
    std::function<WKWebView* _Nullable(WKWebViewConfiguration* _Nonnull)> openPopup{};
    std::function<void()> loaded{}; ///< a page has finished loading
};

/// What a page's owner does.
struct PageCallbacks {
    std::function<void()> home{}; ///< absent in pop-ups
    std::function<void()> closeRequested{};
    std::function<void()> titleChanged{};
    std::function<void()> closed{}; ///< by the page itself
};

/// What the delegates of one page share.
class PageState {
public:
    /// The services must outlive this.
    PageState(WKWebView* _Nonnull view, QuorvelWindow* _Nonnull window,
              const PageServices& services, PageCallbacks callbacks);

    [[nodiscard]] WKWebView* _Nullable view() const { return view_; }
    [[nodiscard]] QuorvelWindow* _Nullable window() const { return window_; }
    [[nodiscard]] const PageServices& services() const { return services_; }
    [[nodiscard]] const PageCallbacks& callbacks() const { return callbacks_; }
    /// Returns what asks the user for permissions.
    [[nodiscard]] PermissionQuestions& questions() { return questions_; }
    /// Returns what asks the user for names and passwords.
    [[nodiscard]] PasswordQuestions& passwords() { return *passwords_; }
    /// Returns the limit of the page's dialogs.
    [[nodiscard]] DialogCap& dialogs() { return dialogs_; }
    [[nodiscard]] bool isPopup() const { return !callbacks_.home; }
    /// Returns the address of the page that is shown, and not of one that is on its way.
    [[nodiscard]] const std::string& address() const { return shown_.text(); }

    /// Loads the page at the address.
    void load(const std::string& address);
    /// Shows a page of the host's own in place of the one at that address.
    void showStatus(const std::string& html, const std::string& address);
    /// Returns whether that is what `showStatus` began.
    [[nodiscard]] bool isStatus(WKNavigation* _Nullable navigation) const {
        return navigation != nil && navigation == status_;
    }
    /// The user took these answers back.
    void permissionsTaken(const std::vector<PermissionStore::Answer>& taken);

    /// The engine begins to load a page, or is sent elsewhere meanwhile.
    void awaits(const std::string& address);
    /// Returns the address of the page that is on its way; empty if none is.
    [[nodiscard]] const std::string& awaited() const { return awaited_; }
    /// Returns the load that `load` asked the engine for.
    [[nodiscard]] RequestedLoad& requested() { return requested_; }
    /// The engine begins with a navigation.
    void begins(WKNavigation* _Nullable navigation);
    /// Nothing is on its way any more.
    void awaitsNothing() { awaited_.clear(); }
    /// A page has replaced the one before.
    void committed();
    /// The engine reports an address.
    void reported(const std::string& address);
    /// The page has shown something that is limited.
    void usedVisit();

    /// Returns whether the engine goes on with a navigation. If not, it is opened elsewhere, the
    /// user is asked, or it is refused.
    [[nodiscard]] bool routes(WKNavigationAction* _Nonnull action, bool isNewWindow);

private:
    [[nodiscard]] LinkRequest requestOf(WKNavigationAction* _Nonnull action,
                                        bool isNewWindow) const;
    void updateLocation();
    void openOutside(const std::string& address);
    void openOther(const std::string& address);

    WKWebView* __weak _Nullable view_;
    QuorvelWindow* __weak _Nullable window_;
    const PageServices& services_;
    PageCallbacks callbacks_;
    PermissionQuestions questions_;
    std::shared_ptr<PasswordQuestions> passwords_;
    DialogCap dialogs_{};
    ShownAddress shown_{};
    PageVisit visit_{};
    WKNavigation* _Nullable status_ = nil;
    WKNavigation* _Nullable requestedNavigation_ = nil;
    RequestedLoad requested_{};
    std::string awaited_{};
    std::uint64_t awaitedGesture_ = 0; ///< the last one when that began
};

} // namespace quorvel
