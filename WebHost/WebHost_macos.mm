#include "WebHost/WebHost_macos.h"

#include "Base/StableHash.h"
#include "Base/TerminalText.h"
#include "LaunchKit/WebBadge.h"
#include "Platform/statusitem/StatusItem_macos.h"
#include "WebHost/Downloads/DownloadList_macos.h"
#include "WebHost/HandoverService_macos.h"
#include "WebHost/HostSignals_macos.h"
#include "WebHost/Links/SiteGuess.h"
#include "WebHost/Links/WebAddress.h"
#include "WebHost/NSText_macos.h"
#include "WebHost/Notifications/BadgeScript.h"
#include "WebHost/Notifications/DockBadge_macos.h"
#include "WebHost/Notifications/PageNotices_macos.h"
#include "WebHost/Pages/HostPage_macos.h"
#include "WebHost/Pages/LoadGate.h"
#include "WebHost/Pages/PageTitle.h"
#include "WebHost/Pages/ScriptForwarder_macos.h"
#include "WebHost/Pages/ViewConfiguration_macos.h"
#include "WebHost/Settings/AppliedSettings_macos.h"
#include "WebHost/Settings/SettingsPanel_macos.h"
#include "WebHost/Storage/WebStore_macos.h"
#include "WebHost/Window/HostMenu_macos.h"
#include "WebHost/Window/PopupList_macos.h"

#include <cstdio>
#include <utility>

namespace {

void log(const std::string& message) {
    std::fprintf(stderr, "quorvel-web-host: %s\n", quorvel::terminalText(message).c_str());
}

} // namespace

/// Shows a web clone. The application and the engine don't keep it; `runWebHost` does.
@interface QuorvelHost
    : NSObject <NSApplicationDelegate, WKScriptMessageHandler, QuorvelCloneCommands>
- (instancetype)initWithOptions:(quorvel::WebHostOptions)options;
@end

@implementation QuorvelHost {
    quorvel::WebHostOptions _options;
    std::unique_ptr<quorvel::PermissionStore> _permissions;
    std::unique_ptr<quorvel::SiteSettingsStore> _siteSettings;
    std::unique_ptr<quorvel::CertificateExceptions> _certificates;
    std::unique_ptr<quorvel::LoadGate> _gate;
    quorvel::PageServices _services;
    quorvel::DockBadge _dock;
    quorvel::WebBadgeState _badge;
    std::unique_ptr<quorvel::HandoverService> _handovers;
    QuorvelDownloadList* _downloads;
    QuorvelPageNotices* _notices;
    QuorvelStatusItem* _statusItem;
    QuorvelSettingsPanel* _settingsPanel;
    QuorvelPopupList* _popups;
    QuorvelPage* _main;
    NSTimer* _titleTimer;
    BOOL _isTitleOld; // what is shown is not what was reported last
    BOOL _isLeavingAsked;
    BOOL _mustQuit; // without asking
}

- (instancetype)initWithOptions:(quorvel::WebHostOptions)options {
    self = [super init];
    if (self != nil) {
        _options = std::move(options);
        [self openRecords];
        [self addGate];
        [self addDownloads];
        [self addServices];
        [self addNotices];
        [self openMainWindow];
    }
    return self;
}

- (void)openRecords {
    const quorvel::WebHome& home = _options.home;
    _permissions = std::make_unique<quorvel::PermissionStore>(home.home, home.permissions);
    _siteSettings = std::make_unique<quorvel::SiteSettingsStore>(home.home, home.settings);
    _certificates = std::make_unique<quorvel::CertificateExceptions>(home.home, home.certificates);
    for (const auto& [file, problem] : {std::pair(home.permissions, _permissions->problem()),
                                        std::pair(home.settings, _siteSettings->problem()),
                                        std::pair(home.certificates, _certificates->problem())}) {
        if (!problem.empty()) {
            log(file + ": " + problem);
        }
    }
    quorvel::applySiteSettings(_options.store, _siteSettings->settings());
}

- (void)addGate {
    __weak QuorvelHost* const weakSelf = self;
    const bool isReadable = _siteSettings->problem().empty();
    _gate = std::make_unique<quorvel::LoadGate>(
        !isReadable || quorvel::lacksItsProxy(_siteSettings->settings()),
        quorvel::LoadGate::Actions{
            [weakSelf](const std::string& address) { [[weakSelf main] load:address]; },
            [weakSelf](quorvel::HostQuestion question) {
                [[weakSelf main].window ask:std::move(question)];
            },
            [weakSelf] { [weakSelf showSiteSettings:nil]; }},
        isReadable ? quorvel::unusableHere(_siteSettings->settings())
                   : quorvel::LoadGate::unreadableFile);
}

- (void)addDownloads {
    __weak QuorvelHost* const weakSelf = self;
    quorvel::DownloadCallbacks callbacks;
    callbacks.ask = [weakSelf](const std::string& name, std::function<void(bool)> answered) {
        return [weakSelf askForDownload:name answered:std::move(answered)] == YES;
    };
    callbacks.changed = [weakSelf](const std::string& text, std::optional<double> progress) {
        [weakSelf showDownloads:text progress:progress];
    };
    _downloads = [[QuorvelDownloadList alloc]
        initWithFolder:_options.downloads
                  mark:quorvel::stableHash(_options.home.home).substr(0, 8)
             callbacks:std::move(callbacks)];
}

- (BOOL)askForDownload:(const std::string&)name answered:(std::function<void(bool)>)answered {
    return [_main.window
        ask:{"This page wants to download another file, “" + name + "”.", "Download",
             "Don’t Download",
             [answered](std::optional<bool> isWanted) { answered(isWanted.value_or(false)); }}];
}

- (void)showDownloads:(const std::string&)text progress:(std::optional<double>)progress {
    __weak QuorvelDownloadList* const downloads = _downloads;
    [_main.window
        showDownloads:text
            cancelled:progress ? std::function<void()>([downloads] { [downloads cancelAll]; })
                               : std::function<void()>()];
    _dock.setProgress(progress);
}

- (void)addServices {
    __weak QuorvelHost* const weakSelf = self;
    _services.name = _options.name;
    _services.homeAddress = _options.homeAddress;
    _services.keepsLinks = _options.keepsLinks;
    _services.siteOf = quorvel::guessedSite;
    _services.permissions = _permissions.get();
    _services.certificates = _certificates.get();
    _services.settings = _siteSettings.get();
    _services.links = _options.links.get();
    _services.downloads = _downloads;
    _services.openPopup = [weakSelf](WKWebViewConfiguration* configuration) {
        return [weakSelf openPopup:configuration];
    };
    _services.loaded = [weakSelf] { [weakSelf saveState]; };
    _popups = [[QuorvelPopupList alloc] initWithServices:_services];
}

- (WKWebView*)openPopup:(WKWebViewConfiguration*)configuration {
    return [_popups open:configuration afterGestures:_main.window.gestures];
}

- (void)addNotices {
    __weak QuorvelHost* const weakSelf = self;
    quorvel::NoticeCallbacks callbacks;
    callbacks.page = [weakSelf] { return [weakSelf main]; };
    callbacks.clicked = [weakSelf] { [[weakSelf main].window present]; };
    _notices = [[QuorvelPageNotices alloc] initWithCallbacks:std::move(callbacks)
                                                 permissions:*_permissions];
}

- (QuorvelPage*)main {
    return _main;
}

- (void)addBadgeScriptsTo:(WKUserContentController*)controller {
    WKContentWorld* const world = [WKContentWorld worldWithName:@(quorvel::badgeWorld)];
    quorvel::addScript(controller, quorvel::badgePageScript, [WKContentWorld pageWorld]);
    quorvel::addScript(controller, quorvel::badgeListenerScript, world);
    [controller addScriptMessageHandler:[[QuorvelScriptForwarder alloc] initWithHandler:self]
                           contentWorld:world
                                   name:@(quorvel::badgeHandler)];
}

- (void)userContentController:(WKUserContentController*)controller
      didReceiveScriptMessage:(WKScriptMessage*)message {
    (void)controller;
    // Pop-ups share the scripts, but may be anybody's.
    if (message.webView != _main.view || !message.frameInfo.mainFrame ||
        ![message.body isKindOfClass:[NSNumber class]]) {
        return;
    }
    if (const auto count = quorvel::reportedBadge(((NSNumber*)message.body).doubleValue)) {
        _badge.setAPIBadge(*count);
        [self titleChanged];
    }
}

- (void)openMainWindow {
    WKWebViewConfiguration* const configuration = quorvel::newViewConfiguration(_options.store);
    [self addBadgeScriptsTo:configuration.userContentController];
    [_notices addToController:configuration.userContentController];
    WKWebView* const view = [[WKWebView alloc] initWithFrame:{
        {0, 0}, { 0, 0 }
    }
                                               configuration:configuration];
    view.allowsBackForwardNavigationGestures = YES;
    view.allowsMagnification = YES;
    __weak QuorvelHost* const weakSelf = self;
    quorvel::PageCallbacks callbacks;
    callbacks.home = [weakSelf] { [weakSelf goToHomeAddress]; };
    callbacks.closeRequested = [] { [NSApp terminate:nil]; };
    callbacks.titleChanged = [weakSelf] { [weakSelf titleChanged]; };
    callbacks.closed = callbacks.closeRequested;
    _main = [[QuorvelPage alloc] initWithView:view
                                     services:_services
                                    callbacks:std::move(callbacks)
                                        state:quorvel::readWindowState(_options.home.windowState)];
    [self showTitle];
    _gate->load([self firstAddress]);
}

- (void)goToHomeAddress {
    _gate->load(_options.homeAddress);
}

- (std::string)firstAddress {
    if (!_options.address.empty()) {
        return _options.address;
    }
    // A page elsewhere was only on the way to sign in.
    const std::string last = quorvel::readWindowState(_options.home.windowState).page;
    return quorvel::isSameSite(last, _options.homeAddress, quorvel::guessedSite)
               ? last
               : _options.homeAddress;
}

// Shows it at once, but not too often.
- (void)titleChanged {
    constexpr NSTimeInterval shortestTime = 0.25;
    _isTitleOld = YES;
    if (_titleTimer != nil) {
        return;
    }
    [self showTitle];
    __weak QuorvelHost* const weakSelf = self;
    _titleTimer = [NSTimer scheduledTimerWithTimeInterval:shortestTime
                                                  repeats:YES
                                                    block:^(NSTimer* timer) {
                                                      [weakSelf titleTimerFired:timer];
                                                    }];
}

- (void)titleTimerFired:(NSTimer*)timer {
    if (_isTitleOld) {
        [self showTitle];
    } else {
        [timer invalidate];
        _titleTimer = nil;
    }
}

- (void)showTitle {
    if (_main == nil) {
        return;
    }
    _isTitleOld = NO;
    const std::string title = [_main title];
    _badge.setTitle(title);
    const auto label = _badge.label();
    [_main.window setTitle:quorvel::windowTitle(title, _options.name, label)
                 pageTitle:title.empty() ? _options.name : quorvel::pageTitle(title)];
    _dock.setLabel(label);
    [_statusItem showLabel:quorvel::nsText(label.value_or(""))];
}

- (void)saveState {
    // While nothing is loaded, the last page is still the one before.
    if (_main == nil || _gate->isClosed()) {
        return;
    }
    if (!quorvel::writeWindowState(_options.home.home, _options.home.windowState,
                                   [_main.window state])) {
        log("the state of the window can’t be written");
    }
}

- (void)openAddress:(const std::string&)address {
    if (!address.empty()) {
        _gate->load(address);
    }
    [_main.window present];
}

- (void)applicationDidFinishLaunching:(NSNotification*)notification {
    (void)notification;
    __weak QuorvelHost* const weakSelf = self;
    if (_options.hasStatusItem) {
        _statusItem = [[QuorvelStatusItem alloc] initWithName:quorvel::nsText(_options.name)
            icon:NSApp.applicationIconImage
            template:_options.isStatusItemTemplate
            show:[weakSelf] { [[weakSelf main].window present]; }
            quit:[] { [NSApp terminate:nil]; }];
        [_statusItem showLabel:quorvel::nsText(_badge.label().value_or(""))];
    }
    quorvel::onRequestToEnd([weakSelf] { [weakSelf quitAtOnce]; });
    _handovers = std::make_unique<quorvel::HandoverService>(
        _options.listener, [weakSelf](const quorvel::WebHandover& handover) {
            [weakSelf openAddress:handover.address];
        });
    [_main.window present];
    quorvel::removeAbandonedStores();
    _options.started();
}

// Links and documents that the system sends here.
- (void)application:(NSApplication*)application openURLs:(NSArray<NSURL*>*)urls {
    (void)application;
    for (NSURL* url in urls) {
        const std::string address = quorvel::textOfURL(url);
        if (quorvel::startAddress(address) ==
            quorvel::StartAddress{quorvel::StartAddress::Case::page, address}) {
            [self openAddress:address];
            return;
        }
    }
}

- (BOOL)applicationShouldHandleReopen:(NSApplication*)application
                    hasVisibleWindows:(BOOL)hasVisibleWindows {
    (void)application;
    (void)hasVisibleWindows;
    [_main.window present];
    return NO;
}

- (BOOL)applicationSupportsSecureRestorableState:(NSApplication*)application {
    (void)application;
    return YES;
}

- (void)quitAtOnce {
    _mustQuit = YES;
    [NSApp terminate:nil];
}

- (NSApplicationTerminateReply)applicationShouldTerminate:(NSApplication*)application {
    (void)application;
    if (_mustQuit || !_downloads.isRunning) {
        return NSTerminateNow;
    }
    [_main.window present];
    __weak QuorvelHost* const weakSelf = self;
    if (!_isLeavingAsked) {
        // Pages must not prevent it with questions of their own.
        _isLeavingAsked = [_main.window ask:{.text = "Files are being downloaded.",
                                             .yes = "Cancel Them and Quit",
                                             .no = "Keep Downloading",
                                             .answered =
                                                 [weakSelf](std::optional<bool> isMeant) {
                                                     [weakSelf leavingAnswered:isMeant == true];
                                                 },
                                             .isUrgent = true}];
    }
    return NSTerminateCancel;
}

- (void)leavingAnswered:(BOOL)isMeant {
    _isLeavingAsked = NO;
    if (isMeant) {
        [self quitAtOnce];
    }
}

// The process ends after this, without destroying anything.
- (void)applicationWillTerminate:(NSNotification*)notification {
    (void)notification;
    _mustQuit = YES;
    [self saveState];
    [_titleTimer invalidate];
    [_downloads cancelAll];
    [_popups endAll];
    [_main end];
}

- (void)showSiteSettings:(id)sender {
    (void)sender;
    if (_settingsPanel == nil) {
        __weak QuorvelHost* const weakSelf = self;
        _settingsPanel = [[QuorvelSettingsPanel alloc]
            initWithServices:[self settingsServices]
                       store:_options.store
                 dataCleared:[weakSelf] { [[weakSelf main].view reload]; }];
    }
    [_settingsPanel show];
}

- (quorvel::SettingsServices)settingsServices {
    __weak QuorvelHost* const weakSelf = self;
    return {.name = _options.name,
            .settings = _siteSettings.get(),
            .permissions = _permissions.get(),
            .certificates = _certificates.get(),
            .settingsChanged = [weakSelf] { [weakSelf settingsChanged]; },
            .permissionsTaken =
                [weakSelf](const std::vector<quorvel::PermissionStore::Answer>& taken) {
                    [weakSelf permissionsTaken:taken];
                },
            .zoom =
                [weakSelf] {
                    QuorvelPage* const page = [weakSelf main];
                    return page == nil ? 0 : [page.window state].zoom;
                },
            .zoomTo = [weakSelf](int zoom) { [[weakSelf main].window zoomTo:zoom]; }};
}

- (void)settingsChanged {
    const quorvel::SiteSettings& settings = _siteSettings->settings();
    quorvel::applySiteSettings(_options.store, settings);
    quorvel::applyUserAgent(_main.view, settings);
    [_popups applyUserAgent];
    if (_siteSettings->problem().empty() && !quorvel::lacksItsProxy(settings)) {
        _gate->open();
    }
}

- (void)permissionsTaken:(const std::vector<quorvel::PermissionStore::Answer>&)taken {
    [_main permissionsTaken:taken];
    [_popups permissionsTaken:taken];
    [_notices tellPermission];
}

@end

namespace quorvel {

void runWebHost(WebHostOptions options) {
    NSApplication* const application = [NSApplication sharedApplication];
    application.mainMenu = newMenuBar(nsText(options.name));
    // The application doesn't keep it.
    NS_VALID_UNTIL_END_OF_SCOPE QuorvelHost* const host =
        [[QuorvelHost alloc] initWithOptions:std::move(options)];
    application.delegate = host;
    [application run];
}

} // namespace quorvel
