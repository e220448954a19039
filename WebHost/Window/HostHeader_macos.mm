#include "WebHost/Window/HostHeader_macos.h"

#include "WebHost/NSText_macos.h"
#include "WebHost/Window/HostMenu_macos.h"
#include "WebHost/Window/WindowBars_macos.h"

@implementation QuorvelHostHeader {
    WKWebView* __weak _page;
    NSButton* _back;
    NSButton* _forward;
    NSButton* _reload;
    NSTextField* _title;
    NSTextField* _host;
}

- (instancetype)initWithPage:(WKWebView*)page target:(id)target hasHome:(BOOL)hasHome {
    self = [super init];
    if (self != nil) {
        _page = page;
        _back = quorvel::newBarButton(@"chevron.left", @"Back", page, @selector(goBack:));
        _forward = quorvel::newBarButton(@"chevron.right", @"Forward", page, @selector(goForward:));
        _reload =
            quorvel::newBarButton(@"arrow.clockwise", @"Reload", self, @selector(reloadOrStop:));
        NSButton* const home = quorvel::newBarButton(@"house", @"Home", target, @selector(goHome:));
        home.hidden = !hasHome;
        _title = quorvel::newBarLabel();
        _host = quorvel::newBarLabel();
        _host.textColor = NSColor.secondaryLabelColor;
        NSStackView* const texts = [NSStackView stackViewWithViews:@[ _title, _host ]];
        texts.orientation = NSUserInterfaceLayoutOrientationVertical;
        texts.alignment = NSLayoutAttributeLeading;
        texts.spacing = 0;
        _view = quorvel::newBar(@[ _back, _forward, _reload, home, texts ], NO);
    }
    return self;
}

- (void)reloadOrStop:(id)sender {
    WKWebView* const page = _page;
    if (page.loading) {
        [page stopLoading:sender];
    } else {
        [page reload:sender];
    }
}

- (void)showTitle:(const std::string&)title {
    _title.stringValue = quorvel::nsText(title);
}

- (void)showHost:(const std::string&)host {
    _host.stringValue = quorvel::nsText(host);
}

- (void)update {
    WKWebView* const page = _page;
    _back.enabled = page.canGoBack;
    _forward.enabled = page.canGoForward;
    NSString* const words = page.loading ? @"Stop" : @"Reload";
    _reload.toolTip = words;
    NSImage* const image =
        [NSImage imageWithSystemSymbolName:page.loading ? @"xmark" : @"arrow.clockwise"
                  accessibilityDescription:words];
    if (image != nil) {
        _reload.image = image;
    }
}

@end
