#include "WebHost/Window/PopupList_macos.h"

#include "WebHost/Pages/PageTitle.h"
#include "WebHost/Settings/AppliedSettings_macos.h"

#include <dispatch/dispatch.h>

@implementation QuorvelPopupList {
    const quorvel::PageServices* _services;
    NSMutableArray<QuorvelPage*>* _pages;
    quorvel::PopupCap _cap;
    std::uint64_t _closedGestures; // in windows that are closed
}

- (instancetype)initWithServices:(const quorvel::PageServices&)services {
    self = [super init];
    if (self != nil) {
        _services = &services;
        _pages = [NSMutableArray array];
    }
    return self;
}

- (WKWebView*)open:(WKWebViewConfiguration*)configuration afterGestures:(std::uint64_t)gestures {
    std::uint64_t all = gestures + _closedGestures;
    for (QuorvelPage* page in _pages) {
        all += page.window.gestures;
    }
    if (!_cap.admits(all, _pages.count)) {
        return nil;
    }
    quorvel::WindowState state;
    state.width = 640;
    state.height = 720;
    // The engine raises an exception for any other configuration.
    WKWebView* const view = [[WKWebView alloc] initWithFrame:{
        {0, 0}, { 0, 0 }
    }
                                               configuration:configuration];
    QuorvelPage* const page = [[QuorvelPage alloc] initWithView:view
                                                       services:*_services
                                                      callbacks:[self callbacksFor:view]
                                                          state:state];
    [_pages addObject:page];
    [self showTitleOf:view];
    [page.window present];
    return view;
}

- (quorvel::PageCallbacks)callbacksFor:(WKWebView*)view {
    __weak QuorvelPopupList* const weakSelf = self;
    __weak WKWebView* const weakView = view;
    quorvel::PageCallbacks callbacks;
    callbacks.titleChanged = [weakSelf, weakView] { [weakSelf showTitleOf:weakView]; };
    // Not at once, since one of the page's own calls is being handled.
    callbacks.closed = [weakSelf, weakView] {
        dispatch_async(dispatch_get_main_queue(), ^{
          [weakSelf close:weakView];
        });
    };
    callbacks.closeRequested = callbacks.closed;
    return callbacks;
}

- (QuorvelPage*)pageWith:(WKWebView*)view {
    for (QuorvelPage* page in _pages) {
        if (page.view == view) {
            return page;
        }
    }
    return nil;
}

- (void)showTitleOf:(WKWebView*)view {
    QuorvelPage* const page = [self pageWith:view];
    if (page == nil) {
        return;
    }
    const std::string title = [page title];
    [page.window setTitle:quorvel::popupTitle([page address], title, _services -> name)
                pageTitle:quorvel::pageTitle(title)];
}

- (void)close:(WKWebView*)view {
    QuorvelPage* const page = [self pageWith:view];
    if (page != nil) {
        _closedGestures += page.window.gestures;
        [_pages removeObject:page];
        [page end];
    }
}

- (void)permissionsTaken:(const std::vector<quorvel::PermissionStore::Answer>&)taken {
    for (QuorvelPage* page in _pages) {
        [page permissionsTaken:taken];
    }
}

- (void)applyUserAgent {
    for (QuorvelPage* page in _pages) {
        quorvel::applyUserAgent(page.view, _services->settings->settings());
    }
}

- (void)endAll {
    for (QuorvelPage* page in [_pages copy]) {
        [page end];
    }
    [_pages removeAllObjects];
}

@end
