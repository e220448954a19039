#pragma once

#include <Foundation/Foundation.h>

// What AppKit.h includes about views and windows, all to be used on the main thread.

NS_ASSUME_NONNULL_BEGIN

@class NSAppearance, NSImage, NSLayoutDimension, NSLayoutXAxisAnchor, NSLayoutYAxisAnchor, NSMenu,
    NSMenuItem, NSWindow;

typedef NSInteger NSModalResponse;
static const NSModalResponse NSModalResponseOK = 1;
static const NSModalResponse NSModalResponseAbort = -1001;
static const NSModalResponse NSAlertFirstButtonReturn = 1000;
static const NSModalResponse NSAlertSecondButtonReturn = 1001;

typedef enum NSLayoutConstraintOrientation : NSInteger {
    NSLayoutConstraintOrientationHorizontal,
    NSLayoutConstraintOrientationVertical
} NSLayoutConstraintOrientation;
typedef float NSLayoutPriority;

@interface NSResponder : NSObject
@end

@interface NSLayoutConstraint : NSObject
@property(getter=isActive) BOOL active SINCE_MACOS(10.10);
@end

// Where an edge of a view is, or how long one is.
SINCE_MACOS(10.11)
@interface NSLayoutAnchor<AnchorType> : NSObject
- (NSLayoutConstraint*)constraintEqualToAnchor:(NSLayoutAnchor<AnchorType>*)anchor
                                      constant:(CGFloat)constant;
@end
SINCE_MACOS(10.11)
@interface NSLayoutXAxisAnchor : NSLayoutAnchor <NSLayoutXAxisAnchor*>
@end
SINCE_MACOS(10.11)
@interface NSLayoutYAxisAnchor : NSLayoutAnchor <NSLayoutYAxisAnchor*>
@end
SINCE_MACOS(10.11)
@interface NSLayoutDimension : NSLayoutAnchor <NSLayoutDimension*>
- (NSLayoutConstraint*)constraintEqualToConstant:(CGFloat)constant;
@end

@interface NSView : NSResponder
- (instancetype)initWithFrame:(NSRect)frame;
@property(nullable, readonly, unsafe_unretained) NSWindow* window;
@property NSRect frame;
@property NSRect bounds;
@property(getter=isHidden) BOOL hidden;
@property(nullable, copy) NSString* toolTip;
@property(nullable, copy) NSString* accessibilityLabel SINCE_MACOS(10.10);
@property BOOL translatesAutoresizingMaskIntoConstraints SINCE_MACOS(10.7);
@property(readonly, getter=isFlipped) BOOL flipped;
@property(readonly, strong) NSLayoutXAxisAnchor* leadingAnchor SINCE_MACOS(10.11);
@property(readonly, strong) NSLayoutXAxisAnchor* trailingAnchor SINCE_MACOS(10.11);
@property(readonly, strong) NSLayoutYAxisAnchor* topAnchor SINCE_MACOS(10.11);
@property(readonly, strong) NSLayoutDimension* widthAnchor SINCE_MACOS(10.11);
- (void)addSubview:(NSView*)view;
- (void)removeFromSuperview;
- (void)setContentHuggingPriority:(NSLayoutPriority)priority
                   forOrientation:(NSLayoutConstraintOrientation)orientation SINCE_MACOS(10.7);
- (void)setContentCompressionResistancePriority:(NSLayoutPriority)priority
                                 forOrientation:(NSLayoutConstraintOrientation)orientation
    SINCE_MACOS(10.7);
@end

typedef enum NSUserInterfaceLayoutOrientation : NSInteger {
    NSUserInterfaceLayoutOrientationHorizontal,
    NSUserInterfaceLayoutOrientationVertical
} NSUserInterfaceLayoutOrientation;
typedef enum NSLayoutAttribute : NSInteger {
    NSLayoutAttributeLeading = 5,
    NSLayoutAttributeWidth = 7
} NSLayoutAttribute;
typedef enum NSStackViewDistribution : NSInteger {
    NSStackViewDistributionFill = 0
} NSStackViewDistribution;
typedef struct NSEdgeInsets {
    CGFloat top;
    CGFloat left;
    CGFloat bottom;
    CGFloat right;
} NSEdgeInsets;

// Hidden views take no space.
@interface NSStackView : NSView
+ (instancetype)stackViewWithViews:(NSArray<NSView*>*)views;
@property NSUserInterfaceLayoutOrientation orientation;
@property NSLayoutAttribute alignment;
@property NSStackViewDistribution distribution SINCE_MACOS(10.11);
@property CGFloat spacing;
@property NSEdgeInsets edgeInsets;
@property(readonly, copy) NSArray<__kindof NSView*>* arrangedSubviews SINCE_MACOS(10.11);
- (void)addArrangedSubview:(NSView*)view SINCE_MACOS(10.11);
@end

@interface NSClipView : NSView
@property BOOL drawsBackground;
@end

@interface NSScrollView : NSView
@property(strong) NSClipView* contentView;
@property(nullable, strong) __kindof NSView* documentView;
@property BOOL hasVerticalScroller;
@property BOOL drawsBackground;
@end

typedef NSUInteger NSWindowStyleMask;
enum : NSUInteger {
    NSWindowStyleMaskBorderless = 0,
    NSWindowStyleMaskTitled = 1 << 0,
    NSWindowStyleMaskClosable = 1 << 1,
    NSWindowStyleMaskMiniaturizable = 1 << 2,
    NSWindowStyleMaskResizable = 1 << 3,
    NSWindowStyleMaskNonactivatingPanel = 1 << 7,
    NSWindowStyleMaskFullScreen = 1 << 14
};
typedef enum NSBackingStoreType : NSUInteger { NSBackingStoreBuffered = 2 } NSBackingStoreType;
typedef NSUInteger NSWindowCollectionBehavior;
enum : NSUInteger {
    NSWindowCollectionBehaviorCanJoinAllSpaces = 1 << 0,
    NSWindowCollectionBehaviorFullScreenPrimary = 1 << 7,
    NSWindowCollectionBehaviorFullScreenAuxiliary = 1 << 8
};
typedef enum NSWindowTabbingMode : NSInteger {
    NSWindowTabbingModeDisallowed = 2
} NSWindowTabbingMode;
typedef NSInteger NSWindowLevel;
static const NSWindowLevel NSStatusWindowLevel = 25;

@class NSColor;
@protocol NSWindowDelegate <NSObject>
@optional
- (BOOL)windowShouldClose:(NSWindow*)sender;
- (void)windowDidEnterFullScreen:(NSNotification*)notification SINCE_MACOS(10.7);
@end

// Its delegate is not retained.
@interface NSWindow : NSResponder
- (instancetype)initWithContentRect:(NSRect)content
                          styleMask:(NSWindowStyleMask)style
                            backing:(NSBackingStoreType)backing
                              defer:(BOOL)isDeferred;
@property(nullable, weak) id<NSWindowDelegate> delegate;
@property(copy) NSString* title;
@property(copy) NSString* subtitle SINCE_MACOS(11.0);
@property(readonly) NSWindowStyleMask styleMask;
@property(readonly) NSRect frame;
@property(nullable, strong) __kindof NSView* contentView;
@property(nullable, weak) NSView* initialFirstResponder;
@property(getter=isReleasedWhenClosed) BOOL releasedWhenClosed;
@property(readonly, getter=isZoomed) BOOL zoomed;
@property NSWindowTabbingMode tabbingMode SINCE_MACOS(10.12);
@property NSWindowCollectionBehavior collectionBehavior SINCE_MACOS(10.5);
@property NSWindowLevel level;
@property BOOL ignoresMouseEvents;
@property(null_resettable, copy) NSColor* backgroundColor;
@property(readonly, copy) NSArray<__kindof NSWindow*>* sheets SINCE_MACOS(10.9);
@property(nullable, readonly, strong) NSWindow* sheetParent SINCE_MACOS(10.9);
- (void)center;
- (void)close;
- (void)zoom:(nullable id)sender;
- (void)makeKeyAndOrderFront:(nullable id)sender;
- (void)orderOut:(nullable id)sender;
- (void)orderFrontRegardless;
- (BOOL)makeFirstResponder:(nullable NSResponder*)responder;
- (void)setFrame:(NSRect)frame display:(BOOL)isDisplayed;
- (NSRect)contentRectForFrameRect:(NSRect)frame;
- (void)endSheet:(NSWindow*)sheet returnCode:(NSModalResponse)code SINCE_MACOS(10.9);
- (void)performClose:(nullable id)sender;
- (void)performMiniaturize:(nullable id)sender;
- (void)performZoom:(nullable id)sender;
- (void)toggleFullScreen:(nullable id)sender SINCE_MACOS(10.7);
@end

@interface NSPanel : NSWindow
@end

typedef unsigned long long NSEventMask;
enum : unsigned long long {
    NSEventMaskLeftMouseDown = 1ULL << 1,
    NSEventMaskRightMouseDown = 1ULL << 3,
    NSEventMaskKeyDown = 1ULL << 10,
    NSEventMaskOtherMouseDown = 1ULL << 25
};
@interface NSEvent : NSObject
@property(nullable, readonly, weak) NSWindow* window;
+ (nullable id)addLocalMonitorForEventsMatchingMask:(NSEventMask)mask
                                            handler:(NSEvent* _Nullable (^)(NSEvent* event))block
    SINCE_MACOS(10.6);
+ (void)removeMonitor:(id)monitor SINCE_MACOS(10.6);
@end

NS_ASSUME_NONNULL_END
