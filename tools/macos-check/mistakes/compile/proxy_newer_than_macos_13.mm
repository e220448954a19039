// expected: 'setProxyConfigurations:' is only available on macOS 14.0 or newer
#import <WebKit/WebKit.h>

void dropProxies(WKWebsiteDataStore* store) { store.proxyConfigurations = @[]; }
