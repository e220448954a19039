#include "WebHost/Settings/SettingsPanel_macos.h"

#include "WebHost/NSText_macos.h"
#include "WebHost/Settings/AppliedSettings_macos.h"
#include "WebHost/Settings/SettingsRows_macos.h"
#include "WebHost/Settings/SiteDataList_macos.h"
#include "WebHost/Window/WindowState.h"

#include <utility>

namespace {

using quorvel::SettingsEditor;

NSWindow* newPanelWindow(const std::string& title) {
    constexpr CGFloat width = 520;
    constexpr CGFloat height = 640;
    NSWindow* const window =
        [[NSWindow alloc] initWithContentRect:{
            {0, 0}, { width, height }
        }
                                    styleMask:NSWindowStyleMaskTitled | NSWindowStyleMaskClosable |
                                              NSWindowStyleMaskResizable
                                      backing:NSBackingStoreBuffered
                                        defer:YES];
    window.releasedWhenClosed = NO; // it belongs to its owner
    window.tabbingMode = NSWindowTabbingModeDisallowed;
    window.title = quorvel::nsText(title);
    [window center];
    return window;
}

template <typename Case> Case chosenIn(NSPopUpButton* choice) {
    return static_cast<Case>(choice.indexOfSelectedItem);
}

template <typename Case> void choose(NSPopUpButton* choice, Case value) {
    [choice selectItemAtIndex:static_cast<NSInteger>(value)];
}

} // namespace

@implementation QuorvelSettingsPanel {
    std::unique_ptr<SettingsEditor> _editor;
    NSWindow* _window;
    NSTextField* _problem;
    NSStepper* _zoom;
    NSTextField* _zoomText;
    NSPopUpButton* _colors;
    NSTextField* _userAgent;
    NSPopUpButton* _proxy;
    NSTextField* _proxyAddress;
    NSTextField* _ruleHost;
    NSPopUpButton* _rulePlace;
    NSStackView* _links;
    NSStackView* _permissions;
    NSStackView* _certificates;
    QuorvelSiteDataList* _data;
}

- (instancetype)initWithServices:(quorvel::SettingsServices)services
                           store:(WKWebsiteDataStore*)store
                     dataCleared:(std::function<void()>)dataCleared {
    self = [super init];
    if (self != nil) {
        const std::string name = services.name;
        _editor = std::make_unique<SettingsEditor>(std::move(services));
        _window = newPanelWindow(quorvel::SettingsText::title(name));
        _data = [[QuorvelSiteDataList alloc] initWithStore:store
                                                      name:name
                                                   cleared:std::move(dataCleared)];
        _problem = quorvel::newHint("");
        _problem.textColor = NSColor.systemRedColor;
        quorvel::scrollThrough(_window, quorvel::newColumn(@[
                                   _problem, [self newPages], [self newConnection], [self newLinks],
                                   [self newPermissions], [self newCertificates], _data.view
                               ]));
    }
    return self;
}

- (void)dealloc {
    [_window close];
}

- (NSView*)newPages {
    constexpr double step = 10;
    __weak QuorvelSettingsPanel* const weakSelf = self;
    NSStackView* const section = quorvel::newSection(@"Pages");
    _zoom = [[NSStepper alloc] initWithFrame:{{0, 0}, {0, 0}}];
    _zoom.minValue = quorvel::smallestZoom;
    _zoom.maxValue = quorvel::largestZoom;
    _zoom.increment = step;
    _zoom.valueWraps = NO;
    quorvel::onAction(_zoom, [weakSelf] { [weakSelf zoomChanged]; });
    _zoomText = [NSTextField labelWithString:@""];
    NSStackView* const zoom = [NSStackView stackViewWithViews:@[ _zoomText, _zoom ]];
    quorvel::addSetting(section, @"Zoom", zoom);
    _colors = quorvel::newChoice(@[ @"Like the system", @"Light", @"Dark" ],
                                 [weakSelf] { [weakSelf colorsChosen]; });
    quorvel::addSetting(section, @"Colors", _colors);
    _userAgent = quorvel::newField(@"The usual one", [weakSelf] { [weakSelf userAgentEntered]; });
    quorvel::addSetting(section, @"User agent", _userAgent);
    [section addArrangedSubview:quorvel::newHint(quorvel::SettingsText::userAgent)];
    [section addArrangedSubview:quorvel::newHint("Spelling is checked as the menu Edit ▸ Spelling "
                                                 "says, in the languages of System Settings.")];
    return section;
}

- (NSView*)newConnection {
    __weak QuorvelSettingsPanel* const weakSelf = self;
    const auto changed = [weakSelf] { [weakSelf proxyChanged]; };
    NSStackView* const section = quorvel::newSection(@"Connection");
    _proxy = quorvel::newChoice(@[ @"Like the system", @"None (not on macOS)", @"This address:" ],
                                changed);
    [_proxy itemAtIndex:static_cast<NSInteger>(quorvel::ProxyUse::none)].enabled = NO;
    [_proxy itemAtIndex:static_cast<NSInteger>(quorvel::ProxyUse::address)].enabled =
        quorvel::canUseProxies() ? YES : NO;
    quorvel::addSetting(section, @"Proxy", _proxy);
    _proxyAddress = quorvel::newField(@"http://host:8080", changed);
    quorvel::addSetting(section, @"Proxy address", _proxyAddress);
    if (!quorvel::canUseProxies()) {
        [section addArrangedSubview:quorvel::newHint("A proxy of its own needs macOS 14.")];
    }
    return section;
}

- (NSView*)newLinks {
    __weak QuorvelSettingsPanel* const weakSelf = self;
    NSStackView* const section = quorvel::newSection(@"Links");
    [section addArrangedSubview:quorvel::newHint(quorvel::SettingsText::links)];
    _links = [self newListIn:section];
    // Leaving the field must not add what is in it.
    _ruleHost = [NSTextField textFieldWithString:@""];
    _ruleHost.placeholderString = @"example.com";
    quorvel::addSetting(section, @"Host", _ruleHost);
    _rulePlace = quorvel::newChoice(@[ @"Open in this window", @"Open in the browser" ], [] {});
    quorvel::addSetting(section, @"Links to it", _rulePlace);
    quorvel::addButton(section,
                       quorvel::newButton(@"Add Rule", [weakSelf] { [weakSelf addRule]; }));
    return section;
}

- (NSView*)newPermissions {
    __weak QuorvelSettingsPanel* const weakSelf = self;
    NSStackView* const section = quorvel::newSection(@"Permissions");
    [section addArrangedSubview:quorvel::newHint(quorvel::SettingsText::permissions)];
    _permissions = [self newListIn:section];
    quorvel::addButton(section, quorvel::newButton(@"Remove All Permissions",
                                                   [weakSelf] { [weakSelf removePermissions]; }));
    return section;
}

- (NSView*)newCertificates {
    NSStackView* const section = quorvel::newSection(@"Accepted Certificates");
    [section addArrangedSubview:quorvel::newHint(quorvel::SettingsText::certificates)];
    _certificates = [self newListIn:section];
    return section;
}

- (NSStackView*)newListIn:(NSStackView*)section {
    NSStackView* const list = quorvel::newColumn(@[]);
    [section addArrangedSubview:list];
    return list;
}

- (void)zoomChanged {
    _editor->services().zoomTo(static_cast<int>(_zoom.doubleValue));
    [self showZoom];
}

- (void)showZoom {
    _zoomText.stringValue = quorvel::nsText(std::to_string(_editor->services().zoom()) + " %");
}

- (void)change:(const std::function<void(quorvel::SiteSettings&)>&)edit {
    [self showProblem:_editor->change(edit)];
}

- (void)colorsChosen {
    const auto colors = chosenIn<quorvel::PageColors>(_colors);
    [self change:[colors](quorvel::SiteSettings& all) { all.colors = colors; }];
}

- (void)userAgentEntered {
    const std::string userAgent = quorvel::textOf(_userAgent.stringValue);
    [self change:[&](quorvel::SiteSettings& all) { all.userAgent = userAgent; }];
}

- (void)proxyChanged {
    const auto use = chosenIn<quorvel::ProxyUse>(_proxy);
    const std::string address = quorvel::textOf(_proxyAddress.stringValue);
    [self change:[&](quorvel::SiteSettings& all) {
        all.proxy = use;
        all.proxyAddress = address;
    }];
}

- (void)addRule {
    const std::string problem = _editor->addRule(quorvel::textOf(_ruleHost.stringValue),
                                                 chosenIn<quorvel::LinkPlace>(_rulePlace));
    if (problem.empty()) {
        _ruleHost.stringValue = @"";
    }
    [self showProblem:problem];
    [self fillLists];
}

- (void)removePermissions {
    [self showProblem:_editor->removePermissions()];
    [self fillLists];
}

// The settings as they are in the fields, whether they can be used or not.
- (quorvel::SiteSettings)entered {
    quorvel::SiteSettings all = _editor->settings();
    all.userAgent = quorvel::textOf(_userAgent.stringValue);
    all.proxy = chosenIn<quorvel::ProxyUse>(_proxy);
    all.proxyAddress = quorvel::textOf(_proxyAddress.stringValue);
    return all;
}

// Shows what went wrong or, if nothing did, what is wrong in the fields.
- (void)showProblem:(const std::string&)problem {
    std::string shown = problem;
    for (const auto& next : {quorvel::problemIn, quorvel::unusableHere}) {
        if (shown.empty()) {
            shown = next([self entered]);
        }
    }
    _problem.stringValue = quorvel::nsText(shown);
    _problem.hidden = shown.empty() ? YES : NO;
}

- (void)fillLists {
    __weak QuorvelSettingsPanel* const weakSelf = self;
    const auto removed = [weakSelf](const std::string& problem) {
        [weakSelf showProblem:problem];
        [weakSelf fillLists];
    };
    quorvel::fillList(_links, _editor->links(removed), quorvel::SettingsText::noLinks);
    quorvel::fillList(_permissions, _editor->permissions(removed),
                      quorvel::SettingsText::noPermissions);
    quorvel::fillList(_certificates, _editor->certificates(removed),
                      quorvel::SettingsText::noCertificates);
}

- (void)show {
    const quorvel::SiteSettings& now = _editor->settings();
    _zoom.doubleValue = _editor->services().zoom();
    [self showZoom];
    choose(_colors, now.colors);
    _userAgent.stringValue = quorvel::nsText(now.userAgent);
    choose(_proxy, now.proxy);
    _proxyAddress.stringValue = quorvel::nsText(now.proxyAddress);
    [self fillLists];
    [self showProblem:_editor->fileProblem()];
    [_data refresh];
    [_window makeKeyAndOrderFront:nil];
}

@end
