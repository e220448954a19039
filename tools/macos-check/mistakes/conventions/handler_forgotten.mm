// expected: completionHandler is not left to answerOnce alone
#import <WebKit/WebKit.h>

@interface Passwords : NSObject <WKNavigationDelegate>
@end

@implementation Passwords

- (void)webView:(WKWebView*)view
    didReceiveAuthenticationChallenge:(NSURLAuthenticationChallenge*)challenge
                    completionHandler:(void (^)(NSURLSessionAuthChallengeDisposition,
                                                NSURLCredential* _Nullable))completionHandler {
    (void)challenge;
}

@end
