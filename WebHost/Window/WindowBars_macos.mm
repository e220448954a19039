#include "WebHost/Window/WindowBars_macos.h"

#include "WebHost/NSText_macos.h"
#include "WebHost/Pages/FloodCaps.h"

#include <deque>
#include <utility>

namespace quorvel {

NSStackView* newBar(NSArray<NSView*>* views, BOOL isHidden) {
    constexpr CGFloat space = 8;
    NSStackView* const bar = [NSStackView stackViewWithViews:views];
    bar.orientation = NSUserInterfaceLayoutOrientationHorizontal;
    bar.spacing = space;
    bar.edgeInsets = {space / 2, space, space / 2, space};
    bar.hidden = isHidden;
    return bar;
}

NSTextField* newBarLabel() {
    constexpr float yielding = 1; // takes the space that is left
    NSTextField* const label = [NSTextField labelWithString:@""];
    label.lineBreakMode = NSLineBreakByTruncatingTail;
    label.maximumNumberOfLines = 1;
    const NSLayoutConstraintOrientation across = NSLayoutConstraintOrientationHorizontal;
    [label setContentHuggingPriority:yielding forOrientation:across];
    [label setContentCompressionResistancePriority:yielding forOrientation:across];
    return label;
}

NSButton* newBarButton(NSString* symbol, NSString* words, id target, SEL action) {
    NSImage* const image = [NSImage imageWithSystemSymbolName:symbol
                                     accessibilityDescription:words];
    NSButton* const button = image == nil
                                 ? [NSButton buttonWithTitle:words target:target action:action]
                                 : [NSButton buttonWithImage:image target:target action:action];
    button.toolTip = words;
    return button;
}

} // namespace quorvel

@implementation QuorvelQuestionBar {
    NSTextField* _text;
    NSButton* _yes;
    NSButton* _no;
    NSTimer* _delay;
    std::deque<quorvel::HostQuestion> _questions;
}

- (instancetype)init {
    self = [super init];
    if (self != nil) {
        _text = quorvel::newBarLabel();
        _yes = [NSButton buttonWithTitle:@"" target:self action:@selector(agree:)];
        _no = [NSButton buttonWithTitle:@"" target:self action:@selector(refuse:)];
        NSButton* const close =
            quorvel::newBarButton(@"xmark", @"Close", self, @selector(closeFirst:));
        _view = quorvel::newBar(@[ _text, _no, _yes, close ], YES);
    }
    return self;
}

- (BOOL)ask:(quorvel::HostQuestion)question {
    if (question.isUrgent) {
        _questions.push_front(std::move(question));
        [self showFirst];
        return YES;
    }
    if (_questions.size() >= quorvel::mostWaitingQuestions) {
        return NO;
    }
    _questions.push_back(std::move(question));
    if (_questions.size() == 1) {
        [self showFirst];
    }
    return YES;
}

- (void)closeAll {
    while (!_questions.empty()) {
        [self answer:std::nullopt];
    }
}

- (void)showFirst {
    _view.hidden = _questions.empty() ? YES : NO;
    if (_questions.empty()) {
        return;
    }
    const quorvel::HostQuestion& first = _questions.front();
    _text.stringValue = quorvel::nsText(first.text);
    _yes.title = quorvel::nsText(first.yes);
    _no.title = quorvel::nsText(first.no);
    [self delayButtons];
}

// What appears under the pointer must not be clicked by accident.
- (void)delayButtons {
    constexpr NSTimeInterval seconds = 0.5;
    _yes.enabled = NO;
    _no.enabled = NO;
    [_delay invalidate];
    __weak QuorvelQuestionBar* const weakSelf = self;
    _delay = [NSTimer scheduledTimerWithTimeInterval:seconds
                                             repeats:NO
                                               block:^(NSTimer* timer) {
                                                 (void)timer;
                                                 [weakSelf enableButtons];
                                               }];
}

- (void)enableButtons {
    _yes.enabled = YES;
    _no.enabled = YES;
}

- (void)answer:(std::optional<bool>)isAgreed {
    if (_questions.empty()) {
        return;
    }
    const quorvel::HostQuestion first = std::move(_questions.front());
    _questions.pop_front();
    first.answered(isAgreed);
    [self showFirst];
}

- (void)agree:(id)sender {
    (void)sender;
    [self answer:true];
}

- (void)refuse:(id)sender {
    (void)sender;
    [self answer:false];
}

- (void)closeFirst:(id)sender {
    (void)sender;
    [self answer:std::nullopt];
}

@end

@implementation QuorvelDownloadBar {
    NSTextField* _text;
    std::function<void()> _cancelled;
}

- (instancetype)init {
    self = [super init];
    if (self != nil) {
        _text = quorvel::newBarLabel();
        NSButton* const close =
            quorvel::newBarButton(@"xmark", @"Cancel or Close", self, @selector(close:));
        _view = quorvel::newBar(@[ _text, close ], YES);
    }
    return self;
}

- (void)showText:(const std::string&)text cancelled:(std::function<void()>)cancelled {
    _cancelled = std::move(cancelled);
    _text.stringValue = quorvel::nsText(text);
    _view.hidden = text.empty() ? YES : NO;
}

- (void)close:(id)sender {
    (void)sender;
    const auto cancelled = std::exchange(_cancelled, nullptr);
    _view.hidden = YES;
    if (cancelled) {
        cancelled();
    }
}

@end
