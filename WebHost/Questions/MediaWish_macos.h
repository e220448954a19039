#pragma once

#import <WebKit/WebKit.h>

#include <string>

namespace quorvel {

/// What a page wants to record with.
struct MediaWish {
    std::string kind{};    ///< the word by which the answer is kept
    std::string problem{}; ///< why it can't be granted, as a message; or empty
};

/// Returns what a page that asks to record this wants.
[[nodiscard]] MediaWish mediaWishOf(WKMediaCaptureType type);

/// Returns the origin in the form of `originOf`.
[[nodiscard]] std::string originTextOf(WKSecurityOrigin* _Nonnull origin);

} // namespace quorvel
