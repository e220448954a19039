#include "Platform/statusitem/StatusItem_macos.h"

#include <utility>

@implementation QuorvelStatusItem {
    NSStatusItem* _item;
    std::function<void()> _show;
    std::function<void()> _quit;
}

- (instancetype)initWithName:(NSString*)name
                        icon:(NSImage*)icon
                    template:(BOOL)isTemplate
                        show:(std::function<void()>)show
                        quit:(std::function<void()>)quit {
    self = [super init];
    if (self != nil) {
        constexpr CGFloat side = 18; // of pictures in the menu bar
        _show = std::move(show);
        _quit = std::move(quit);
        _item = [NSStatusBar.systemStatusBar statusItemWithLength:NSVariableStatusItemLength];
        NSImage* const picture = [icon copy];
        picture.size = {side, side};
        [picture setTemplate:isTemplate];
        NSStatusBarButton* const button = _item.button;
        button.image = picture;
        button.imagePosition = NSImageLeading;
        button.toolTip = name;
        NSMenu* const menu = [[NSMenu alloc] initWithTitle:name];
        NSMenuItem* const showing = [menu addItemWithTitle:@"Show"
                                                    action:@selector(showClone:)
                                             keyEquivalent:@""];
        NSMenuItem* const quitting = [menu addItemWithTitle:@"Quit"
                                                     action:@selector(quitClone:)
                                              keyEquivalent:@""];
        showing.target = self;
        quitting.target = self;
        _item.menu = menu;
    }
    return self;
}

- (void)dealloc {
    [NSStatusBar.systemStatusBar removeStatusItem:_item];
}

- (void)showLabel:(NSString*)label {
    _item.button.title = label;
}

- (void)showClone:(id)sender {
    (void)sender;
    _show();
}

- (void)quitClone:(id)sender {
    (void)sender;
    _quit();
}

@end
