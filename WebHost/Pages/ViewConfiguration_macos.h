#pragma once

#import <WebKit/WebKit.h>

namespace quorvel {

/// Returns what the view of the clone's own window is made with. Pop-ups get copies from the
/// engine.
[[nodiscard]] WKWebViewConfiguration* _Nonnull newViewConfiguration(
    WKWebsiteDataStore* _Nonnull store);

} // namespace quorvel
