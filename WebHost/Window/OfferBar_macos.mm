#include "WebHost/Window/OfferBar_macos.h"

#include "WebHost/NSText_macos.h"
#include "WebHost/Window/WindowBars_macos.h"

#include <utility>

@implementation QuorvelOfferBar {
    NSTextField* _text;
    NSButton* _button;
    std::function<void()> _chosen;
}

- (instancetype)init {
    self = [super init];
    if (self != nil) {
        _text = quorvel::newBarLabel();
        _button = [NSButton buttonWithTitle:@"" target:self action:@selector(choose:)];
        _view = quorvel::newBar(@[ _text, _button ], YES);
    }
    return self;
}

- (void)showText:(const std::string&)text
          button:(const std::string&)button
          chosen:(std::function<void()>)chosen {
    _text.stringValue = quorvel::nsText(text);
    _button.title = quorvel::nsText(button);
    _chosen = std::move(chosen);
    _view.hidden = NO;
}

- (void)hide {
    _view.hidden = YES;
    _chosen = nullptr;
}

- (void)choose:(id)sender {
    (void)sender;
    if (const auto chosen = _chosen) {
        chosen();
    }
}

@end
