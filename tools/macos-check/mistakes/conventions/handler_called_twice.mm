// expected: decisionHandler is not left to answerOnce alone
#import <WebKit/WebKit.h>

@interface Policy : NSObject <WKNavigationDelegate>
@end

@implementation Policy

- (void)webView:(WKWebView*)view
    decidePolicyForNavigationAction:(WKNavigationAction*)action
                    decisionHandler:(void (^)(WKNavigationActionPolicy))decisionHandler {
    const auto answer = quorvel::answerOnce(decisionHandler, WKNavigationActionPolicyCancel);
    answer(WKNavigationActionPolicyAllow);
    decisionHandler(WKNavigationActionPolicyAllow);
}

@end
