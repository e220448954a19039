#include "WebHost/Pages/ViewConfiguration_macos.h"

namespace quorvel {
namespace {

// Sites look for these words, which the engine leaves out in windows of other programs.
NSString* browserWords() {
    NSBundle* const browser = [NSBundle bundleWithPath:@"/Applications/Safari.app"];
    const id found = [browser objectForInfoDictionaryKey:@"CFBundleShortVersionString"];
    NSString* const version = [found isKindOfClass:[NSString class]] ? (NSString*)found : @"16.0";
    return
        [[@"Version/" stringByAppendingString:version] stringByAppendingString:@" Safari/605.1.15"];
}

} // namespace

WKWebViewConfiguration* newViewConfiguration(WKWebsiteDataStore* store) {
    WKWebViewConfiguration* const configuration = [[WKWebViewConfiguration alloc] init];
    configuration.websiteDataStore = store;
    configuration.applicationNameForUserAgent = browserWords();
    configuration.mediaTypesRequiringUserActionForPlayback = WKAudiovisualMediaTypeAudio;
    configuration.preferences.javaScriptCanOpenWindowsAutomatically = NO;
    configuration.preferences.elementFullscreenEnabled = YES;
    return configuration;
}

} // namespace quorvel
