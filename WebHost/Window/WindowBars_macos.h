#pragma once

#include "WebHost/Questions/HostQuestion.h"

#import <AppKit/AppKit.h>

#include <functional>
#include <string>

namespace quorvel {

/// Returns a row for a window, hidden or not, with these views one after the other.
[[nodiscard]] NSStackView* _Nonnull newBar(NSArray<NSView*>* _Nonnull views, BOOL isHidden);
/// Returns a label that shows one line of a text as it is.
[[nodiscard]] NSTextField* _Nonnull newBarLabel();
/// Returns a button with one of the system's symbols, or with its words if there is no such symbol.
[[nodiscard]] NSButton* _Nonnull newBarButton(NSString* _Nonnull symbol, NSString* _Nonnull words,
                                              id _Nullable target, SEL _Nonnull action);

} // namespace quorvel

/// Shows one question after the other.
@interface QuorvelQuestionBar : NSObject
@property(nonatomic, readonly, nonnull) NSView* view;
/// Asks after the questions that already wait, or at once if it is urgent. Returns NO if too many
/// wait and it is not urgent.
- (BOOL)ask:(quorvel::HostQuestion)question;
/// Answers all questions as if the user had closed them.
- (void)closeAll;
@end

/// Shows the progress of downloads.
@interface QuorvelDownloadBar : NSObject
@property(nonatomic, readonly, nonnull) NSView* view;
/// An empty text hides the bar. `cancelled` may be empty.
- (void)showText:(const std::string&)text cancelled:(std::function<void()>)cancelled;
@end
