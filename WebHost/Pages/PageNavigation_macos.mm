#include "WebHost/Pages/PageNavigation_macos.h"

#include "WebHost/AnswerOnce_macos.h"
#include "WebHost/Certificates/CertificateGuard_macos.h"
#include "WebHost/Links/WebAddress.h"
#include "WebHost/NSText_macos.h"
#include "WebHost/Notifications/BadgeScript.h"
#include "WebHost/Pages/LoadFailure_macos.h"
#include "WebHost/Pages/StatusPages.h"

#include <utility>

namespace {

bool isAttachment(NSURLResponse* response) {
    if (![response isKindOfClass:[NSHTTPURLResponse class]]) {
        return false;
    }
    NSString* const disposition =
        [(NSHTTPURLResponse*)response valueForHTTPHeaderField:@"Content-Disposition"];
    return quorvel::textOf(disposition.lowercaseString).starts_with("attachment");
}

} // namespace

@implementation QuorvelPageNavigation {
    std::shared_ptr<quorvel::PageState> _state;
    std::shared_ptr<quorvel::CertificateGuard> _guard;
    std::optional<quorvel::RateCap> _reloads;
}

- (instancetype)initWithState:(std::shared_ptr<quorvel::PageState>)state {
    self = [super init];
    if (self != nil) {
        _state = std::move(state);
        _guard = std::make_shared<quorvel::CertificateGuard>(*_state);
        _reloads = quorvel::reloadCap();
    }
    return self;
}

- (void)webView:(WKWebView*)view
    decidePolicyForNavigationAction:(WKNavigationAction*)action
                    decisionHandler:(void (^)(WKNavigationActionPolicy))decisionHandler {
    const auto answer = quorvel::answerOnce(decisionHandler, WKNavigationActionPolicyCancel);
    (void)view;
    if (action.shouldPerformDownload) {
        answer(WKNavigationActionPolicyDownload);
        return;
    }
    const bool isRouted = _state->routes(action, action.targetFrame == nil);
    answer(isRouted ? WKNavigationActionPolicyAllow : WKNavigationActionPolicyCancel);
}

- (void)webView:(WKWebView*)view
    decidePolicyForNavigationResponse:(WKNavigationResponse*)response
                      decisionHandler:(void (^)(WKNavigationResponsePolicy))decisionHandler {
    const auto answer = quorvel::answerOnce(decisionHandler, WKNavigationResponsePolicyCancel);
    (void)view;
    const bool isShown = response.canShowMIMEType && !isAttachment(response.response);
    answer(isShown || !response.forMainFrame ? WKNavigationResponsePolicyAllow
                                             : WKNavigationResponsePolicyDownload);
}

- (void)webView:(WKWebView*)view
     navigationAction:(WKNavigationAction*)action
    didBecomeDownload:(WKDownload*)download {
    (void)view;
    (void)action;
    download.delegate = _state->services().downloads;
}

- (void)webView:(WKWebView*)view
    navigationResponse:(WKNavigationResponse*)response
     didBecomeDownload:(WKDownload*)download {
    (void)view;
    (void)response;
    download.delegate = _state->services().downloads;
}

- (void)webView:(WKWebView*)view didStartProvisionalNavigation:(WKNavigation*)navigation {
    if (!_state->isStatus(navigation)) {
        _guard->loadStarted();
    }
    _state->begins(navigation);
    _state->awaits(quorvel::textOfURL(view.URL));
}

- (void)webView:(WKWebView*)view
    didReceiveServerRedirectForProvisionalNavigation:(WKNavigation*)navigation {
    (void)navigation;
    _state->awaits(quorvel::textOfURL(view.URL));
}

- (void)webView:(WKWebView*)view didCommitNavigation:(WKNavigation*)navigation {
    (void)navigation;
    _state->committed();
    [self repeatIfDropped];
    if (!_state->isPopup()) {
        [view evaluateJavaScript:quorvel::nsText(quorvel::badgeMainScript)
                         inFrame:nil
                  inContentWorld:[WKContentWorld worldWithName:@(quorvel::badgeWorld)]
               completionHandler:nil];
    }
}

// Asks for a page once more if the engine does not begin with it, now that another one is there.
- (void)repeatIfDropped {
    if (!_state->requested().isWaiting()) {
        return;
    }
    const std::weak_ptr<quorvel::PageState> state = _state;
    constexpr NSTimeInterval seconds = quorvel::RequestedLoad::longestDelay / 1000.0;
    [NSTimer scheduledTimerWithTimeInterval:seconds
                                    repeats:NO
                                      block:^(NSTimer* timer) {
                                        (void)timer;
                                        const auto page = state.lock();
                                        if (page && page->requested().isToBeRepeated()) {
                                            page->load(std::string(page->requested().address()));
                                        }
                                      }];
}

- (void)webView:(WKWebView*)view didFinishNavigation:(WKNavigation*)navigation {
    (void)view;
    (void)navigation;
    _state->services().loaded();
}

- (void)webView:(WKWebView*)view
    didFailProvisionalNavigation:(WKNavigation*)navigation
                       withError:(NSError*)error {
    (void)view;
    (void)navigation;
    const quorvel::LoadFailure failure = quorvel::loadFailureOf(error);
    const std::string awaited = _state->awaited();
    const std::string& address = failure.address.empty() ? awaited : failure.address;
    _state->awaitsNothing();
    switch (failure.kind) {
    case quorvel::LoadFailure::Case::none:
        return;
    case quorvel::LoadFailure::Case::offline:
        _state->showStatus(quorvel::offlinePage(address, failure.reason), address);
        return;
    case quorvel::LoadFailure::Case::certificate:
        _guard->failed(address, failure.reason);
        return;
    }
}

- (void)webView:(WKWebView*)view
    didFailNavigation:(WKNavigation*)navigation
            withError:(NSError*)error {
    // A part of the page is there, and stays.
    (void)view;
    (void)navigation;
    (void)error;
    _state->awaitsNothing();
}

- (void)webViewWebContentProcessDidTerminate:(WKWebView*)view {
    if (!_reloads->admits(quorvel::FloodClock::now())) {
        _state->showStatus(quorvel::crashPage(_state->address()), _state->address());
    } else if (_state->awaited().empty()) {
        [view reload];
    } else {
        // A reload would show the page before the one that is still on its way.
        _state->load(std::string(_state->awaited()));
    }
}

- (void)webView:(WKWebView*)view
    didReceiveAuthenticationChallenge:(NSURLAuthenticationChallenge*)challenge
                    completionHandler:(void (^)(NSURLSessionAuthChallengeDisposition,
                                                NSURLCredential* _Nullable))completionHandler {
    const quorvel::PasswordAnswer answer = quorvel::answerOnce(
        completionHandler, NSURLSessionAuthChallengeCancelAuthenticationChallenge, nil);
    (void)view;
    if (quorvel::CertificateGuard::isAbout(challenge.protectionSpace)) {
        _guard->judge(challenge.protectionSpace, answer);
        return;
    }
    const std::weak_ptr<quorvel::PageState> state = _state;
    quorvel::answerChallenge(
        challenge, _state->passwords(), quorvel::hostOf(_state->address()),
        [state] {
            if (const auto page = state.lock()) {
                page->usedVisit();
            }
        },
        answer);
}

@end
