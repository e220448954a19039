#pragma once

#include "WebHost/Pages/PageState_macos.h"

#import <WebKit/WebKit.h>

#include <memory>

/// Decides where a page goes, and what is shown where there is none. A view doesn't keep its
/// delegates: the page does.
@interface QuorvelPageNavigation : NSObject <WKNavigationDelegate>
- (nonnull instancetype)initWithState:(std::shared_ptr<quorvel::PageState>)state;
@end
