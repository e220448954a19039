// expected: assigning retained object to weak property
#import <WebKit/WebKit.h>

@interface Policy : NSObject <WKNavigationDelegate>
@end

@implementation Policy
@end

void route(WKWebView* view) { view.navigationDelegate = [[Policy alloc] init]; }
