#pragma once

#include "WebHost/Pages/PageState_macos.h"

#import <WebKit/WebKit.h>

#include <memory>

/// Answers what a page wants of the user: windows, dialogs, files, camera and microphone. A view
/// doesn't keep its delegates: the page does.
@interface QuorvelPageRequests : NSObject <WKUIDelegate>
- (nonnull instancetype)initWithState:(std::shared_ptr<quorvel::PageState>)state;
@end
