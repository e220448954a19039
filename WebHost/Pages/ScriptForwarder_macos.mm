#include "WebHost/Pages/ScriptForwarder_macos.h"

#include "WebHost/NSText_macos.h"

@implementation QuorvelScriptForwarder {
    id<WKScriptMessageHandler> __weak _handler;
}

- (instancetype)initWithHandler:(id<WKScriptMessageHandler>)handler {
    self = [super init];
    if (self != nil) {
        _handler = handler;
    }
    return self;
}

- (void)userContentController:(WKUserContentController*)controller
      didReceiveScriptMessage:(WKScriptMessage*)message {
    [_handler userContentController:controller didReceiveScriptMessage:message];
}

@end

namespace quorvel {

void addScript(WKUserContentController* controller, const char* script, WKContentWorld* world) {
    [controller
        addUserScript:[[WKUserScript alloc] initWithSource:nsText(script)
                                             injectionTime:WKUserScriptInjectionTimeAtDocumentStart
                                          forMainFrameOnly:YES
                                            inContentWorld:world]];
}

} // namespace quorvel
