#pragma once

#import <WebKit/WebKit.h>

#include <functional>
#include <string>

/// The data that sites have stored in a clone: shown by site, to be cleared by site or all at once.
@interface QuorvelSiteDataList : NSObject
/// `cleared` is called when data was removed.
- (nonnull instancetype)initWithStore:(nonnull WKWebsiteDataStore*)store
                                 name:(const std::string&)cloneName
                              cleared:(std::function<void()>)cleared;
@property(nonatomic, readonly, nonnull) NSView* view;
/// Lists the data again.
- (void)refresh;
@end
