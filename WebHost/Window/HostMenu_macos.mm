#include "WebHost/Window/HostMenu_macos.h"

#import <WebKit/WebKit.h>

#include <initializer_list>

namespace quorvel {
namespace {

constexpr NSUInteger command = NSEventModifierFlagCommand;
constexpr NSUInteger withShift = command | NSEventModifierFlagShift;
constexpr NSUInteger withOption = command | NSEventModifierFlagOption;
constexpr NSUInteger withControl = command | NSEventModifierFlagControl;

struct Entry {
    NSString* title; ///< nil for a line
    SEL action = nullptr;
    NSString* key = @"";
    NSUInteger modifiers = command;
};

NSMenu* newMenu(NSString* title, std::initializer_list<Entry> entries) {
    NSMenu* const menu = [[NSMenu alloc] initWithTitle:title];
    for (const Entry& entry : entries) {
        if (entry.title == nil) {
            [menu addItem:[NSMenuItem separatorItem]];
            continue;
        }
        NSMenuItem* const item = [menu addItemWithTitle:entry.title
                                                 action:entry.action
                                          keyEquivalent:entry.key];
        item.keyEquivalentModifierMask = entry.modifiers;
    }
    return menu;
}

void addSubmenu(NSMenu* menu, NSMenu* submenu) {
    NSMenuItem* const item = [menu addItemWithTitle:submenu.title action:nullptr keyEquivalent:@""];
    item.submenu = submenu;
}

NSMenu* newCloneMenu(NSString* name) {
    return newMenu(
        name, {{[@"About " stringByAppendingString:name], @selector(orderFrontStandardAboutPanel:)},
               {nil},
               {@"Site Settings…", @selector(showSiteSettings:), @","},
               {nil},
               {[@"Hide " stringByAppendingString:name], @selector(hide:), @"h"},
               {@"Hide Others", @selector(hideOtherApplications:), @"h", withOption},
               {@"Show All", @selector(unhideAllApplications:)},
               {nil},
               {[@"Quit " stringByAppendingString:name], @selector(terminate:), @"q"}});
}

NSMenu* newEditMenu() {
    NSMenu* const menu =
        newMenu(@"Edit", {{@"Undo", @selector(undo:), @"z"},
                          {@"Redo", @selector(redo:), @"z", withShift},
                          {nil},
                          {@"Cut", @selector(cut:), @"x"},
                          {@"Copy", @selector(copy:), @"c"},
                          {@"Paste", @selector(paste:), @"v"},
                          {@"Select All", @selector(selectAll:), @"a"},
                          {@"Copy Link to Page", @selector(copyLink:), @"c", withShift},
                          {nil},
                          {@"Find…", @selector(showFindBar:), @"f"},
                          {@"Find Next", @selector(findNext:), @"g"},
                          {@"Find Previous", @selector(findPrevious:), @"g", withShift},
                          {nil}});
    NSMenu* const spelling = newMenu(
        @"Spelling", {{@"Show Spelling and Grammar", @selector(showGuessPanel:), @":"},
                      {@"Check Document Now", @selector(checkSpelling:), @";"},
                      {nil},
                      {@"Check Spelling While Typing", @selector(toggleContinuousSpellChecking:)}});
    addSubmenu(menu, spelling);
    return menu;
}

NSMenu* newViewMenu() {
    return newMenu(@"View",
                   {{@"Reload", @selector(reload:), @"r"},
                    {@"Reload from Origin", @selector(reloadFromOrigin:), @"r", withOption},
                    {@"Stop", @selector(stopLoading:), @"."},
                    {nil},
                    {@"Actual Size", @selector(zoomPageToActualSize:), @"0"},
                    {@"Zoom In", @selector(zoomPageIn:), @"+"},
                    {@"Zoom Out", @selector(zoomPageOut:), @"-"},
                    {nil},
                    {@"Show Header", @selector(toggleHeader:), @"h", withShift},
                    {@"Full Screen", @selector(toggleFullScreen:), @"f", withControl}});
}

} // namespace

NSMenu* newMenuBar(NSString* name) {
    NSMenu* const bar = [[NSMenu alloc] initWithTitle:@""];
    const auto add = [bar](NSMenu* menu) { addSubmenu(bar, menu); };
    add(newCloneMenu(name));
    add(newMenu(@"File", {{@"Print…", @selector(printPage:), @"p"},
                          {nil},
                          {@"Close Window", @selector(performClose:), @"w"}}));
    add(newEditMenu());
    add(newViewMenu());
    add(newMenu(@"History", {{@"Back", @selector(goBack:), @"["},
                             {@"Forward", @selector(goForward:), @"]"},
                             {@"Home", @selector(goHome:), @"h", withControl}}));
    NSMenu* const windows =
        newMenu(@"Window", {{@"Minimize", @selector(performMiniaturize:), @"m"},
                            {@"Zoom", @selector(performZoom:)},
                            {nil},
                            {@"Bring All to Front", @selector(arrangeInFront:)}});
    add(windows);
    NSApp.windowsMenu = windows;
    return bar;
}

} // namespace quorvel
