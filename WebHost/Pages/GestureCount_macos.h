#pragma once

#import <AppKit/AppKit.h>

#include <cstdint>

/// Counts what the user does with a view, wherever it is shown. The engine doesn't say whether the
/// user wanted what a page asks for.
@interface QuorvelGestureCount : NSObject
- (nonnull instancetype)initWithView:(nonnull NSView*)view;
/// The number of clicks and key presses so far.
@property(nonatomic, readonly) std::uint64_t count;
/// Whether the last one was so recent that what follows is likely to be its effect.
@property(nonatomic, readonly) BOOL isRecent;
/// Counts no more.
- (void)stop;
@end
