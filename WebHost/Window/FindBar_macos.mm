#include "WebHost/Window/FindBar_macos.h"

#include "WebHost/Window/WindowBars_macos.h"

@interface QuorvelFindBar () <NSSearchFieldDelegate>
@end

@implementation QuorvelFindBar {
    WKWebView* __weak _page;
    NSSearchField* _field;
    NSTextField* _result;
}

- (instancetype)initWithPage:(WKWebView*)page {
    self = [super init];
    if (self != nil) {
        _page = page;
        _field = [[NSSearchField alloc] initWithFrame:{{0, 0}, {0, 0}}];
        _field.delegate = self;
        _field.target = self;
        _field.action = @selector(entered:);
        _result = quorvel::newBarLabel();
        NSButton* const previous =
            quorvel::newBarButton(@"chevron.up", @"Previous", self, @selector(previous:));
        NSButton* const next =
            quorvel::newBarButton(@"chevron.down", @"Next", self, @selector(entered:));
        NSButton* const close = quorvel::newBarButton(@"xmark", @"Close", self, @selector(close:));
        _view = quorvel::newBar(@[ _field, previous, next, _result, close ], YES);
    }
    return self;
}

- (void)show {
    _view.hidden = NO;
    [_view.window makeFirstResponder:_field];
}

- (void)hide {
    _view.hidden = YES;
    [_view.window makeFirstResponder:_page];
}

- (void)findForward:(BOOL)isForward {
    NSString* const text = _field.stringValue;
    if (text.length == 0) {
        _result.stringValue = @"";
        return;
    }
    WKFindConfiguration* const configuration = [[WKFindConfiguration alloc] init];
    configuration.backwards = !isForward;
    configuration.caseSensitive = NO;
    configuration.wraps = YES;
    __weak QuorvelFindBar* const weakSelf = self;
    [_page findString:text
        withConfiguration:configuration
        completionHandler:^(WKFindResult* result) {
          [weakSelf showIsFound:result.matchFound];
        }];
}

- (void)showIsFound:(BOOL)isFound {
    _result.stringValue = isFound ? @"" : @"Not found";
}

- (void)entered:(id)sender {
    (void)sender;
    [self findForward:YES];
}

- (void)previous:(id)sender {
    (void)sender;
    [self findForward:NO];
}

- (void)close:(id)sender {
    (void)sender;
    [self hide];
}

- (BOOL)control:(NSControl*)control
               textView:(NSTextView*)textView
    doCommandBySelector:(SEL)selector {
    (void)control;
    (void)textView;
    if (selector != @selector(cancelOperation:)) {
        return NO;
    }
    [self hide];
    return YES;
}

@end
