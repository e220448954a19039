#include "WebHost/Window/MessagePanel_macos.h"

#include "WebHost/NSText_macos.h"

namespace {

constexpr NSTimeInterval seconds = 3;
constexpr CGFloat margin = 12;

NSPanel* newPanel(NSTextField* label) {
    NSPanel* const panel = [[NSPanel alloc]
        initWithContentRect:{
            {0, 0}, { 0, 0 }
        }
                  styleMask:NSWindowStyleMaskBorderless | NSWindowStyleMaskNonactivatingPanel
                    backing:NSBackingStoreBuffered
                      defer:YES];
    panel.releasedWhenClosed = NO;
    panel.ignoresMouseEvents = YES;
    panel.level = NSStatusWindowLevel;
    panel.collectionBehavior =
        NSWindowCollectionBehaviorCanJoinAllSpaces | NSWindowCollectionBehaviorFullScreenAuxiliary;
    panel.backgroundColor = NSColor.windowBackgroundColor;
    [panel.contentView addSubview:label];
    return panel;
}

} // namespace

@implementation QuorvelMessagePanel {
    NSTextField* _label;
    NSPanel* _panel;
    NSTimer* _timer;
}

- (void)showText:(const std::string&)text over:(NSWindow*)window {
    if (_panel == nil) {
        _label = [NSTextField labelWithString:@""];
        _panel = newPanel(_label);
    }
    _label.stringValue = quorvel::nsText(text);
    [_label sizeToFit];
    const NSSize size = _label.frame.size;
    const NSRect below = window.frame;
    const NSSize outer = {size.width + 2 * margin, size.height + 2 * margin};
    _label.frame = {{margin, margin}, size};
    [_panel setFrame:{{below.origin.x + (below.size.width - outer.width) / 2,
                       below.origin.y + below.size.height - outer.height - 4 * margin},
                      outer}
             display:YES];
    [_panel orderFrontRegardless];
    [_timer invalidate];
    __weak QuorvelMessagePanel* const weakSelf = self;
    _timer = [NSTimer scheduledTimerWithTimeInterval:seconds
                                             repeats:NO
                                               block:^(NSTimer* timer) {
                                                 (void)timer;
                                                 [weakSelf hide];
                                               }];
}

- (void)hide {
    [_timer invalidate];
    _timer = nil;
    [_panel orderOut:nil];
}

@end
