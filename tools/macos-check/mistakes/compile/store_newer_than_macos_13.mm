// expected: 'dataStoreForIdentifier:' is only available on macOS 14.0 or newer
#import <WebKit/WebKit.h>

WKWebsiteDataStore* open(NSUUID* identifier) {
    return [WKWebsiteDataStore dataStoreForIdentifier:identifier];
}
