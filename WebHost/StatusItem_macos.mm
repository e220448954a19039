#include "WebHost/StatusItem_macos.h"

#include "WebHost/NSText_macos.h"

@implementation QuorvelStatusItem {
    NSStatusItem* _item;
    std::function<void()> _clicked;
}

- (instancetype)initWithName:(NSString*)name
                    template:(BOOL)isTemplate
                     clicked:(std::function<void()>)clicked {
    self = [super init];
    if (self != nil) {
        constexpr CGFloat side = 18; // of pictures in the menu bar
        _clicked = std::move(clicked);
        _item = [NSStatusBar.systemStatusBar statusItemWithLength:NSVariableStatusItemLength];
        NSImage* const icon = [NSApp.applicationIconImage copy];
        icon.size = {side, side};
        [icon setTemplate:isTemplate];
        NSStatusBarButton* const button = _item.button;
        button.image = icon;
        button.imagePosition = NSImageLeading;
        button.toolTip = name;
        button.target = self;
        button.action = @selector(clicked:);
    }
    return self;
}

- (void)dealloc {
    [NSStatusBar.systemStatusBar removeStatusItem:_item];
}

- (void)showLabel:(const std::optional<std::string>&)label {
    _item.button.title = quorvel::nsText(label.value_or(""));
}

- (void)clicked:(id)sender {
    (void)sender;
    _clicked();
}

@end
