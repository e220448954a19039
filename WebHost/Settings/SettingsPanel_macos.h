#pragma once

#include "WebHost/Settings/SettingsEditor.h"

#import <WebKit/WebKit.h>

/// The window with a clone's Site Settings. Every choice takes effect at once.
@interface QuorvelSettingsPanel : NSObject
- (nonnull instancetype)initWithServices:(quorvel::SettingsServices)services
                                   store:(nonnull WKWebsiteDataStore*)store
                             dataCleared:(std::function<void()>)dataCleared;
/// Shows the window with the current settings.
- (void)show;
@end
