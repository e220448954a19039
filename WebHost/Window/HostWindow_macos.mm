#include "WebHost/Window/HostWindow_macos.h"

#include "WebHost/NSText_macos.h"
#include "WebHost/Pages/GestureCount_macos.h"
#include "WebHost/Pages/PageTitle.h"
#include "WebHost/Window/FindBar_macos.h"
#include "WebHost/Window/HostHeader_macos.h"
#include "WebHost/Window/HostMenu_macos.h"
#include "WebHost/Window/MessagePanel_macos.h"
#include "WebHost/Window/OfferBar_macos.h"
#include "WebHost/Window/WindowBars_macos.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int zoomStep = 10;
constexpr CGFloat wholeZoom = 100;

NSWindow* newWindow(const quorvel::WindowState& state) {
    const NSRect content = {{0, 0}, {CGFloat(state.width), CGFloat(state.height)}};
    NSWindow* const window = [[NSWindow alloc]
        initWithContentRect:content
                  styleMask:NSWindowStyleMaskTitled | NSWindowStyleMaskClosable |
                            NSWindowStyleMaskMiniaturizable | NSWindowStyleMaskResizable
                    backing:NSBackingStoreBuffered
                      defer:NO];
    window.releasedWhenClosed = NO; // it belongs to its owner
    window.tabbingMode = NSWindowTabbingModeDisallowed;
    window.collectionBehavior = NSWindowCollectionBehaviorFullScreenPrimary;
    [window center];
    return window;
}

} // namespace

@interface QuorvelWindow () <NSWindowDelegate, NSMenuItemValidation, QuorvelWindowCommands>
@end

@implementation QuorvelWindow {
    WKWebView* _page;
    NSString* _name;
    quorvel::WindowActions _actions;
    quorvel::WindowState _state;
    std::string _address;
    QuorvelGestureCount* _gestureCount;
    QuorvelHostHeader* _header;
    QuorvelFindBar* _findBar;
    QuorvelQuestionBar* _questions;
    QuorvelOfferBar* _offer;
    QuorvelDownloadBar* _downloads;
    QuorvelMessagePanel* _message;
}

- (instancetype)initWithPage:(WKWebView*)page
                        name:(NSString*)name
                     actions:(quorvel::WindowActions)actions
                       state:(const quorvel::WindowState&)state {
    self = [super init];
    if (self != nil) {
        _page = page;
        _name = name;
        _actions = std::move(actions);
        _state = state;
        _window = newWindow(state);
        _gestureCount = [[QuorvelGestureCount alloc] initWithView:page];
        _message = [[QuorvelMessagePanel alloc] init];
        [self buildContent];
        _window.delegate = self;
        [self zoomTo:state.zoom];
        if (state.isMaximized) {
            [_window zoom:nil];
        }
    }
    return self;
}

- (void)buildContent {
    const BOOL isMain = _actions.home ? YES : NO;
    _questions = [[QuorvelQuestionBar alloc] init];
    _offer = [[QuorvelOfferBar alloc] init];
    _downloads = [[QuorvelDownloadBar alloc] init];
    _findBar = [[QuorvelFindBar alloc] initWithPage:_page];
    _header = [[QuorvelHostHeader alloc] initWithPage:_page target:self hasHome:isMain];
    _header.view.hidden = isMain && _state.hidesHeader; // a pop-up always shows its host
    NSStackView* const rows = [NSStackView stackViewWithViews:@[
        _header.view, _questions.view, _offer.view, _findBar.view, _page, _downloads.view
    ]];
    rows.orientation = NSUserInterfaceLayoutOrientationVertical;
    rows.alignment = NSLayoutAttributeWidth;
    rows.distribution = NSStackViewDistributionFill;
    rows.spacing = 0;
    constexpr float yielding = 1; // takes the space that is left
    [_page setContentHuggingPriority:yielding forOrientation:NSLayoutConstraintOrientationVertical];
    _window.contentView = rows;
    [_window makeFirstResponder:_page];
}

- (std::uint64_t)gestures {
    return _gestureCount.count;
}

- (BOOL)hasRecentGesture {
    return _gestureCount.isRecent;
}

- (void)present {
    [_window makeKeyAndOrderFront:nil];
    if (@available(macOS 14.0, *)) {
        [NSApp activate];
    } else {
        [NSApp activateIgnoringOtherApps:YES];
    }
}

- (void)setTitle:(const std::string&)windowTitle pageTitle:(const std::string&)pageTitle {
    _window.title = quorvel::nsText(windowTitle);
    [_header showTitle:pageTitle];
}

- (void)updateLocation:(const std::string&)address isExcepted:(BOOL)isExcepted {
    _address = address;
    const std::string host = quorvel::shownHost(address, isExcepted == YES);
    _window.subtitle = quorvel::nsText(host);
    [_header showHost:host];
    [_header update];
}

- (BOOL)ask:(quorvel::HostQuestion)question {
    return [_questions ask:std::move(question)];
}

- (void)showOffer:(const std::string&)text
           button:(const std::string&)button
           chosen:(std::function<void()>)chosen {
    [_offer showText:text button:button chosen:std::move(chosen)];
}

- (void)hideOffer {
    [_offer hide];
}

- (void)showDownloads:(const std::string&)text cancelled:(std::function<void()>)cancelled {
    [_downloads showText:text cancelled:std::move(cancelled)];
}

- (void)showMessage:(const std::string&)text {
    NSWindow* const shown = _page.window; // another one while an element fills the screen
    [_message showText:text over:shown == nil ? _window : shown];
}

- (quorvel::WindowState)state {
    quorvel::WindowState now = _state;
    const BOOL fillsScreen = (_window.styleMask & NSWindowStyleMaskFullScreen) != 0;
    now.isMaximized = _window.zoomed;
    if (!now.isMaximized && !fillsScreen) {
        const NSSize size = [_window contentRectForFrameRect:_window.frame].size;
        now.width = static_cast<int>(size.width);
        now.height = static_cast<int>(size.height);
    }
    if (!_address.empty()) {
        now.page = _address;
    }
    return now;
}

- (void)end {
    [_gestureCount stop];
    [_message hide];
    [_questions closeAll];
    // The handlers of their dialogs are called by this alone.
    for (NSWindow* sheet in [_window.sheets copy]) {
        [_window endSheet:sheet returnCode:NSModalResponseAbort];
    }
    _window.delegate = nil;
    [_window close];
}

- (BOOL)windowShouldClose:(NSWindow*)sender {
    (void)sender;
    const auto close = _actions.closeRequested; // may be the end of this object
    close();
    return NO;
}

- (void)zoomTo:(int)percent {
    _state.zoom = std::clamp(percent, quorvel::smallestZoom, quorvel::largestZoom);
    _page.pageZoom = _state.zoom / wholeZoom;
}

- (BOOL)validateMenuItem:(NSMenuItem*)item {
    const SEL action = item.action;
    if (action == @selector(toggleHeader:)) {
        item.state = _header.view.hidden ? NSControlStateValueOff : NSControlStateValueOn;
    }
    return action != @selector(toggleHeader:) && action != @selector(goHome:) ? YES
           : _actions.home                                                    ? YES
                                                                              : NO;
}

- (void)goHome:(id)sender {
    (void)sender;
    if (_actions.home) {
        _actions.home();
    }
}

- (void)showFindBar:(id)sender {
    (void)sender;
    [_findBar show];
}

- (void)findNext:(id)sender {
    (void)sender;
    [_findBar findForward:YES];
}

- (void)findPrevious:(id)sender {
    (void)sender;
    [_findBar findForward:NO];
}

- (void)zoomPageIn:(id)sender {
    (void)sender;
    [self zoomTo:_state.zoom + zoomStep];
}

- (void)zoomPageOut:(id)sender {
    (void)sender;
    [self zoomTo:_state.zoom - zoomStep];
}

- (void)zoomPageToActualSize:(id)sender {
    (void)sender;
    [self zoomTo:int(wholeZoom)];
}

- (void)toggleHeader:(id)sender {
    (void)sender;
    _state.hidesHeader = !_state.hidesHeader;
    _header.view.hidden = _state.hidesHeader;
    if (_state.hidesHeader) {
        [self showMessage:"⇧⌘H shows the header again"];
    }
}

- (void)printPage:(id)sender {
    (void)sender;
    NSPrintOperation* const operation =
        [_page printOperationWithPrintInfo:NSPrintInfo.sharedPrintInfo];
    operation.view.frame = _page.bounds; // without a size it prints blank pages
    [operation runOperationModalForWindow:_window
                                 delegate:nil
                           didRunSelector:nullptr
                              contextInfo:nullptr];
}

- (void)copyLink:(id)sender {
    (void)sender;
    NSPasteboard* const pasteboard = NSPasteboard.generalPasteboard;
    [pasteboard clearContents];
    if ([pasteboard setString:quorvel::nsText(_address) forType:NSPasteboardTypeString]) {
        [self showMessage:"Link copied"];
    }
}

- (void)windowDidEnterFullScreen:(NSNotification*)notification {
    (void)notification;
    [self showMessage:quorvel::textOf(_name) + " is full screen. ⌃⌘F leaves."];
}

@end
