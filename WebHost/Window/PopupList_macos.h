#pragma once

#include "WebHost/Pages/HostPage_macos.h"

#include <cstdint>

/// The pop-up windows of a clone.
@interface QuorvelPopupList : NSObject
/// The services must outlive this.
- (nonnull instancetype)initWithServices:(const quorvel::PageServices&)services;
/// Opens one, of which there are one for each gesture and few at a time. Returns its view, or nil.
/// `gestures` were those in the clone's own window.
- (nullable WKWebView*)open:(nonnull WKWebViewConfiguration*)configuration
              afterGestures:(std::uint64_t)gestures;
/// The user took these answers back.
- (void)permissionsTaken:(const std::vector<quorvel::PermissionStore::Answer>&)taken;
/// Has all tell pages the chosen user agent.
- (void)applyUserAgent;
- (void)endAll;
@end
