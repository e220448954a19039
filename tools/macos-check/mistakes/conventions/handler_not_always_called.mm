// expected: completionHandler is not left to answerOnce alone
#import <WebKit/WebKit.h>

@interface Dialogs : NSObject <WKUIDelegate>
@end

@implementation Dialogs

- (void)webView:(WKWebView*)view
    runJavaScriptAlertPanelWithMessage:(NSString*)message
                      initiatedByFrame:(WKFrameInfo*)frame
                     completionHandler:(void (^)(void))completionHandler {
    if (frame.mainFrame) {
        completionHandler();
    }
}

@end
