#pragma once

#include "WebHost/Pages/HostPage_macos.h"

#import <WebKit/WebKit.h>

#include <functional>

namespace quorvel {

struct NoticeCallbacks {
    /// Returns the page of the clone's own window, which alone may show notifications.
    std::function<QuorvelPage* _Nullable()> page{};
    std::function<void()> clicked{};
};

} // namespace quorvel

/// Shows the notifications of the clone's own page, under the clone's name and icon.
@interface QuorvelPageNotices : NSObject
- (nonnull instancetype)initWithCallbacks:(quorvel::NoticeCallbacks)callbacks
                              permissions:(quorvel::PermissionStore&)permissions;
/// Adds the interface to the pages of that controller.
- (void)addToController:(nonnull WKUserContentController*)controller;
/// The user's answers may have changed.
- (void)tellPermission;
@end
