#pragma once

#import <WebKit/WebKit.h>

/// Passes messages of scripts on to a handler that it doesn't keep. A content controller keeps its
/// handlers, and its view keeps it: a handler that owns the view would never be released.
@interface QuorvelScriptForwarder : NSObject <WKScriptMessageHandler>
- (nonnull instancetype)initWithHandler:(nonnull id<WKScriptMessageHandler>)handler;
@end

namespace quorvel {

/// Adds a script for the top frames, to be run when a page begins.
void addScript(WKUserContentController* _Nonnull controller, const char* _Nonnull script,
               WKContentWorld* _Nonnull world);

} // namespace quorvel
