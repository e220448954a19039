// expected: nothing keeps this navigationDelegate: policy
#import <WebKit/WebKit.h>

void route(WKWebView* view, id<WKNavigationDelegate> (^make)(void)) {
    const id<WKNavigationDelegate> policy = make();
    view.navigationDelegate = policy;
}
