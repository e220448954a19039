#pragma once

#include "WebHost/Pages/PageState_macos.h"

#import <WebKit/WebKit.h>

#include <string>

/// A page in its window, and what becomes of its requests. Keeps the delegates of its view.
@interface QuorvelPage : NSObject
/// `view` is new and belongs to the page's window from now on. The services must outlive this.
- (nonnull instancetype)initWithView:(nonnull WKWebView*)view
                            services:(const quorvel::PageServices&)services
                           callbacks:(quorvel::PageCallbacks)callbacks
                               state:(const quorvel::WindowState&)state;
@property(nonatomic, readonly, nonnull) WKWebView* view;
@property(nonatomic, readonly, nonnull) QuorvelWindow* window;
- (void)load:(const std::string&)address;
/// The user took these answers back.
- (void)permissionsTaken:(const std::vector<quorvel::PermissionStore::Answer>&)taken;
/// Has `done` called with the user's answer, now or later.
- (void)decide:(const std::string&)kind
          text:(const std::string&)text
          done:(std::function<void(bool)>)done;
/// Returns the address of the page that is shown, and not of one that is on its way.
- (std::string)address;
- (std::string)title;
/// Answers everything that is still asked, closes the window and lets go of the view.
- (void)end;
@end
