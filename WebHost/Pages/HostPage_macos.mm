#include "WebHost/Pages/HostPage_macos.h"

#include "WebHost/Links/WebAddress.h"
#include "WebHost/NSText_macos.h"
#include "WebHost/Pages/PageNavigation_macos.h"
#include "WebHost/Pages/PageRequests_macos.h"
#include "WebHost/Settings/AppliedSettings_macos.h"

#include <utility>

namespace {

void* const observation = (void*)&observation;

NSArray<NSString*>* observedKeys() {
    return @[ @"title", @"URL", @"loading", @"canGoBack", @"canGoForward", @"fullscreenState" ];
}

} // namespace

@implementation QuorvelPage {
    std::shared_ptr<quorvel::PageState> _state;
    QuorvelPageNavigation* _navigation;
    QuorvelPageRequests* _requests;
    BOOL _isOver;
}

- (instancetype)initWithView:(WKWebView*)view
                    services:(const quorvel::PageServices&)services
                   callbacks:(quorvel::PageCallbacks)callbacks
                       state:(const quorvel::WindowState&)state {
    self = [super init];
    if (self != nil) {
        _view = view;
        _window = [[QuorvelWindow alloc] initWithPage:view
                                                 name:quorvel::nsText(services.name)
                                              actions:{callbacks.home, callbacks.closeRequested}
                                                state:state];
        _state =
            std::make_shared<quorvel::PageState>(view, _window, services, std::move(callbacks));
        _navigation = [[QuorvelPageNavigation alloc] initWithState:_state];
        _requests = [[QuorvelPageRequests alloc] initWithState:_state];
        view.navigationDelegate = _navigation;
        view.UIDelegate = _requests;
        quorvel::applyUserAgent(view, services.settings->settings());
        for (NSString* key in observedKeys()) {
            [view addObserver:self
                   forKeyPath:key
                      options:NSKeyValueObservingOptionNew
                      context:observation];
        }
    }
    return self;
}

- (void)dealloc {
    [self end];
}

- (void)load:(const std::string&)address {
    _state->load(address);
}

- (void)permissionsTaken:(const std::vector<quorvel::PermissionStore::Answer>&)taken {
    _state->permissionsTaken(taken);
}

- (void)decide:(const std::string&)kind
          text:(const std::string&)text
          done:(std::function<void(bool)>)done {
    const std::string origin = quorvel::originOf([self address]);
    if (origin.empty()) {
        done(false);
    } else {
        _state->questions().decide(origin, kind, text, std::move(done));
    }
}

- (std::string)address {
    return _state->address();
}

- (std::string)title {
    return quorvel::textOf(_view.title);
}

- (void)end {
    if (_isOver) {
        return;
    }
    _isOver = YES;
    for (NSString* key in observedKeys()) {
        [_view removeObserver:self forKeyPath:key context:observation];
    }
    [_view stopLoading];
    [_window end];
    _view.navigationDelegate = nil;
    _view.UIDelegate = nil;
}

- (void)observeValueForKeyPath:(NSString*)keyPath
                      ofObject:(id)object
                        change:(NSDictionary<NSKeyValueChangeKey, id>*)change
                       context:(void*)context {
    if (context != observation) {
        [super observeValueForKeyPath:keyPath ofObject:object change:change context:context];
    } else if ([keyPath isEqualToString:@"title"]) {
        _state->callbacks().titleChanged();
    } else if ([keyPath isEqualToString:@"fullscreenState"]) {
        [self fullScreenChanged];
    } else {
        _state->reported(quorvel::textOfURL(_view.URL));
    }
}

// A page that fills the screen may look like anything.
- (void)fullScreenChanged {
    if (_view.fullscreenState == WKFullscreenStateInFullscreen) {
        [_window showMessage:_state->services().name + " is full screen. Esc leaves."];
    }
}

@end
