#include "WebHost/Pages/PageState_macos.h"

#include "WebHost/Links/WebAddress.h"
#include "WebHost/NSText_macos.h"
#include "WebHost/Pages/StatusPages.h"
#include "WebHost/Questions/PasswordQuestion_macos.h"

#include <utility>

namespace quorvel {

PageState::PageState(WKWebView* view, QuorvelWindow* window, const PageServices& services,
                     PageCallbacks callbacks)
    : view_(view), window_(window), services_(services), callbacks_(std::move(callbacks)),
      questions_(
          *services.permissions,
          [this](HostQuestion question) { return [window_ ask:std::move(question)] == YES; },
          [this] { usedVisit(); }),
      passwords_(newPasswordQuestions(window)) {}

void PageState::load(const std::string& address) {
    NSURL* const target = [NSURL URLWithString:nsText(address)];
    if (target == nil || address.empty()) {
        requested_.withdraw();
        [view_ loadHTMLString:nsText(noAddressPage(services_.name)) baseURL:nil];
    } else {
        requested_.requested(textOfURL(target));
        requestedNavigation_ = [view_ loadRequest:[NSURLRequest requestWithURL:target]];
    }
}

void PageState::begins(WKNavigation* navigation) {
    if (navigation != nil && navigation == requestedNavigation_) {
        requested_.withdraw();
    }
}

void PageState::showStatus(const std::string& html, const std::string& address) {
    NSURL* const failed = [NSURL URLWithString:nsText(address)];
    if (failed == nil || !isWebAddress(address)) {
        status_ = [view_ loadHTMLString:nsText(html) baseURL:nil];
    } else {
        status_ = [view_ loadSimulatedRequest:[NSURLRequest requestWithURL:failed]
                           responseHTMLString:nsText(html)];
    }
}

void PageState::permissionsTaken(const std::vector<PermissionStore::Answer>& taken) {
    questions_.reset();
    if (isHeldUntilReload(taken, originOf(address()))) {
        [view_ setCameraCaptureState:WKMediaCaptureStateNone completionHandler:nil];
        [view_ setMicrophoneCaptureState:WKMediaCaptureStateNone completionHandler:nil];
        [view_ reload];
    }
}

void PageState::updateLocation() {
    [window_ updateLocation:address()
                 isExcepted:services_.certificates->isAcceptedByEngine(hostOf(address()))];
}

void PageState::awaits(const std::string& address) {
    awaited_ = address;
    awaitedGesture_ = window_.gestures;
}

void PageState::committed() {
    // While a load is requested, the engine already reports its address as the view's.
    shown_.committed(requested_.isWaiting() ? "" : textOfURL(view_.URL));
    awaited_.clear();
    if (visit_.begins(hostOf(address()), window_.gestures)) {
        dialogs_.reset();
        questions_.reset();
        passwords_->reset();
    }
    updateLocation();
    callbacks_.titleChanged();
}

void PageState::reported(const std::string& address) {
    shown_.reported(address);
    updateLocation();
    callbacks_.titleChanged();
}

void PageState::usedVisit() { visit_.used(window_.gestures); }

LinkRequest PageState::requestOf(WKNavigationAction* action, bool isNewWindow) const {
    const bool isClick = action.navigationType == WKNavigationTypeLinkActivated;
    const bool isOfMainFrame = isNewWindow || action.targetFrame.mainFrame == YES;
    LinkRequest request;
    request.page = address();
    request.home = services_.homeAddress;
    request.isLinkClick = isClick;
    // New windows without a gesture are blocked by the engine.
    request.isGesture = isClick || isNewWindow || window_.hasRecentGesture == YES;
    // The engine asks again about each place that a server sends it to.
    request.isRedirect = !awaited_.empty() && awaitedGesture_ == window_.gestures;
    request.isMainFrame = isOfMainFrame;
    request.isNewWindow = isNewWindow;
    request.isPopup = isPopup();
    request.staysInside = services_.keepsLinks;
    return request;
}

bool PageState::routes(WKNavigationAction* action, bool isNewWindow) {
    const std::string asked = textOfURL(action.request.URL);
    const std::string target = asked.empty() ? "about:blank" : asked;
    LinkRequest request = requestOf(action, isNewWindow);
    request.address = target;
    request.rule = ruleFor(services_.settings->settings(), hostOf(target));
    if (!isWebAddress(target) && action.sourceFrame.mainFrame != YES) {
        request.isMainFrame = false; // a frame must not open other programs in the page's name
        request.isNewWindow = false;
    }
    if (request.isMainFrame && !isNewWindow) {
        requested_.decided(target, request.isLinkClick);
    }
    return follow(
        routeOf(request, services_.siteOf), [&] { openOutside(target); },
        [&] { openOther(target); });
}

void PageState::openOutside(const std::string& address) {
    if (!services_.links->open(address)) {
        [window_ showMessage:"No program opens this link"];
    }
}

void PageState::openOther(const std::string& address) {
    questions_.decideLink(this->address(), address, [this, address] { openOutside(address); });
}

} // namespace quorvel
