#pragma once

#include "WebHost/Pages/HostPage_macos.h"

#include <cstdint>

/// The pop-up windows of a clone.
@interface QuorvelPopupList : NSObject
/// The services must outlive this.
- (nonnull instancetype)initWithServices:(const quorvel::PageServices&)services;
/// Opens a pop-up: one per gesture, and few at a time. Returns its view; nil if it is refused.
/// `gestures` is the number of those in the clone's own window.
- (nullable WKWebView*)open:(nonnull WKWebViewConfiguration*)configuration
              afterGestures:(std::uint64_t)gestures;
/// The user took these answers back.
- (void)permissionsTaken:(const std::vector<quorvel::PermissionStore::Answer>&)taken;
/// Applies the chosen user agent to all.
- (void)applyUserAgent;
- (void)endAll;
@end
