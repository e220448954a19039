#include "WebHost/Pages/PageRequests_macos.h"

#include "WebHost/AnswerOnce_macos.h"
#include "WebHost/Links/WebAddress.h"
#include "WebHost/NSText_macos.h"
#include "WebHost/Pages/PageDialogs_macos.h"
#include "WebHost/Questions/MediaWish_macos.h"

#include <utility>

@implementation QuorvelPageRequests {
    std::shared_ptr<quorvel::PageState> _state;
}

- (instancetype)initWithState:(std::shared_ptr<quorvel::PageState>)state {
    self = [super init];
    if (self != nil) {
        _state = std::move(state);
    }
    return self;
}

- (WKWebView*)webView:(WKWebView*)view
    createWebViewWithConfiguration:(WKWebViewConfiguration*)configuration
               forNavigationAction:(WKNavigationAction*)action
                    windowFeatures:(WKWindowFeatures*)features {
    (void)view;
    (void)features;
    // Links have been routed by the decision about their policy; scripts come here directly.
    return _state->routes(action, true) ? _state->services().openPopup(configuration) : nil;
}

- (void)webViewDidClose:(WKWebView*)view {
    (void)view;
    _state->callbacks().closed();
}

- (void)webView:(WKWebView*)view
    runJavaScriptAlertPanelWithMessage:(NSString*)message
                      initiatedByFrame:(WKFrameInfo*)frame
                     completionHandler:(void (^)(void))completionHandler {
    const auto answer = quorvel::answerOnce(completionHandler);
    (void)view;
    (void)frame;
    quorvel::showPageDialog(_state, {.text = quorvel::textOf(message),
                                     .answered = [answer](bool, NSString*) { answer(); }});
}

- (void)webView:(WKWebView*)view
    runJavaScriptConfirmPanelWithMessage:(NSString*)message
                        initiatedByFrame:(WKFrameInfo*)frame
                       completionHandler:(void (^)(BOOL))completionHandler {
    const auto answer = quorvel::answerOnce(completionHandler, NO);
    (void)view;
    (void)frame;
    quorvel::showPageDialog(
        _state, {.text = quorvel::textOf(message),
                 .canBeRefused = true,
                 .answered = [answer](bool isAgreed, NSString*) { answer(isAgreed ? YES : NO); }});
}

- (void)webView:(WKWebView*)view
    runJavaScriptTextInputPanelWithPrompt:(NSString*)prompt
                              defaultText:(NSString*)text
                         initiatedByFrame:(WKFrameInfo*)frame
                        completionHandler:(void (^)(NSString* _Nullable))completionHandler {
    const auto answer = quorvel::answerOnce(completionHandler, nil);
    (void)view;
    (void)frame;
    quorvel::showPageDialog(_state, {.text = quorvel::textOf(prompt),
                                     .canBeRefused = true,
                                     .entry = quorvel::textOf(text),
                                     .answered = [answer](bool isAgreed, NSString* entered) {
                                         answer(isAgreed ? entered : nil);
                                     }});
}

- (void)webView:(WKWebView*)view
    runOpenPanelWithParameters:(WKOpenPanelParameters*)parameters
              initiatedByFrame:(WKFrameInfo*)frame
             completionHandler:(void (^)(NSArray<NSURL*>* _Nullable))completionHandler {
    const auto answer = quorvel::answerOnce(completionHandler, nil);
    (void)view;
    (void)frame;
    QuorvelWindow* const window = _state->window();
    if (window == nil) {
        return;
    }
    NSOpenPanel* const panel = [NSOpenPanel openPanel];
    panel.canChooseFiles = YES;
    panel.canChooseDirectories = parameters.allowsDirectories;
    panel.allowsMultipleSelection = parameters.allowsMultipleSelection;
    panel.message = quorvel::nsText("Choose what to give to " + quorvel::hostOf(_state->address()));
    [panel beginSheetModalForWindow:window.window
                  completionHandler:^(NSModalResponse response) {
                    answer(response == NSModalResponseOK ? panel.URLs : nil);
                  }];
}

- (void)webView:(WKWebView*)view
    requestMediaCapturePermissionForOrigin:(WKSecurityOrigin*)origin
                          initiatedByFrame:(WKFrameInfo*)frame
                                      type:(WKMediaCaptureType)type
                           decisionHandler:(void (^)(WKPermissionDecision))decisionHandler {
    const auto answer = quorvel::answerOnce(decisionHandler, WKPermissionDecisionDeny);
    (void)view;
    const std::string asking = quorvel::originOf(_state->address());
    const quorvel::MediaWish wish = quorvel::mediaWishOf(type);
    if (!wish.problem.empty()) {
        [_state->window() showMessage:wish.problem];
        return;
    }
    // A frame from elsewhere must not be granted something in the page's name.
    if (asking.empty() || asking != quorvel::originTextOf(origin) ||
        asking != quorvel::originTextOf(frame.securityOrigin)) {
        return;
    }
    _state->questions().decide(
        asking, wish.kind,
        quorvel::hostOf(asking) + " wants to " + quorvel::permissionWords(wish.kind) + ".",
        [answer](bool isAllowed) {
            answer(isAllowed ? WKPermissionDecisionGrant : WKPermissionDecisionDeny);
        });
}

@end
