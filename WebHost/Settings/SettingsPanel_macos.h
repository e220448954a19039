#pragma once

#include "WebHost/Settings/SettingsEditor.h"

#import <WebKit/WebKit.h>

/// The window with a clone's Site Settings. Whatever is chosen there holds at once.
@interface QuorvelSettingsPanel : NSObject
- (nonnull instancetype)initWithServices:(quorvel::SettingsServices)services
                                   store:(nonnull WKWebsiteDataStore*)store
                             dataCleared:(std::function<void()>)dataCleared;
/// Shows the window with what holds now.
- (void)show;
@end
