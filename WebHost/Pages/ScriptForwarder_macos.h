#pragma once

#import <WebKit/WebKit.h>

/// Passes messages of scripts on to a handler that it doesn't keep. A content controller keeps what
/// it is given, and its views, so that a handler that owns them would never go.
@interface QuorvelScriptForwarder : NSObject <WKScriptMessageHandler>
- (nonnull instancetype)initWithHandler:(nonnull id<WKScriptMessageHandler>)handler;
@end

namespace quorvel {

/// Adds a script for the top frames, to be run when a page begins.
void addScript(WKUserContentController* _Nonnull controller, const char* _Nonnull script,
               WKContentWorld* _Nonnull world);

} // namespace quorvel
