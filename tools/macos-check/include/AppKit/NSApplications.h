#pragma once

#include <AppKit/NSControls.h>

// What AppKit.h includes about the application as a whole, all to be used on the main thread.

NS_ASSUME_NONNULL_BEGIN

typedef NSUInteger NSEventModifierFlags;
enum : NSUInteger {
    NSEventModifierFlagShift = 1 << 17,
    NSEventModifierFlagControl = 1 << 18,
    NSEventModifierFlagOption = 1 << 19,
    NSEventModifierFlagCommand = 1 << 20
};

// Without a target, its action goes to the object that knows it in the key window.
@interface NSMenuItem : NSObject
+ (NSMenuItem*)separatorItem;
@property(nullable) SEL action;
@property(nullable, weak) id target;
@property(getter=isEnabled) BOOL enabled;
@property(nullable, strong) NSMenu* submenu;
@property NSEventModifierFlags keyEquivalentModifierMask;
@property NSControlStateValue state;
@end

@protocol NSMenuItemValidation <NSObject>
- (BOOL)validateMenuItem:(NSMenuItem*)item;
@end

@interface NSMenu : NSObject
- (instancetype)initWithTitle:(NSString*)title;
@property(copy) NSString* title;
- (void)addItem:(NSMenuItem*)item;
- (NSMenuItem*)addItemWithTitle:(NSString*)title
                         action:(nullable SEL)action
                  keyEquivalent:(NSString*)key;
@end

SINCE_MACOS(10.5)
@interface NSDockTile : NSObject
@property(readonly) NSSize size;
@property(nullable, strong) NSView* contentView;
@property(nullable, copy) NSString* badgeLabel;
- (void)display;
@end

@class NSApplication;
typedef enum NSApplicationTerminateReply : NSUInteger {
    NSTerminateCancel,
    NSTerminateNow
} NSApplicationTerminateReply;

@protocol NSApplicationDelegate <NSObject>
@optional
- (void)applicationDidFinishLaunching:(NSNotification*)notification;
- (void)application:(NSApplication*)application openURLs:(NSArray<NSURL*>*)urls SINCE_MACOS(10.13);
- (BOOL)applicationShouldHandleReopen:(NSApplication*)application
                    hasVisibleWindows:(BOOL)hasVisibleWindows;
- (BOOL)applicationSupportsSecureRestorableState:(NSApplication*)application SINCE_MACOS(12.0);
- (NSApplicationTerminateReply)applicationShouldTerminate:(NSApplication*)application;
- (void)applicationWillTerminate:(NSNotification*)notification;
@end

typedef enum NSApplicationActivationPolicy : NSInteger {
    NSApplicationActivationPolicyRegular,
    NSApplicationActivationPolicyAccessory,
    NSApplicationActivationPolicyProhibited
} NSApplicationActivationPolicy;
// In C++ an option set is a plain integer, so that `a | b` is one as well.
typedef NSUInteger NSApplicationActivationOptions;
enum : NSUInteger {
    NSApplicationActivateAllWindows = 1 << 0,
    NSApplicationActivateIgnoringOtherApps = 1 << 1
};

@class NSRunningApplication;
// Its delegate is not retained.
@interface NSApplication : NSResponder
@property(class, readonly, strong) __kindof NSApplication* sharedApplication;
@property(nullable, weak) id<NSApplicationDelegate> delegate;
@property(nullable, strong) NSMenu* mainMenu;
@property(nullable, strong) NSMenu* windowsMenu;
@property(null_resettable, strong) NSImage* applicationIconImage;
@property(readonly, strong) NSDockTile* dockTile SINCE_MACOS(10.5);
@property(nullable, strong) NSAppearance* appearance SINCE_MACOS(10.14);
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy SINCE_MACOS(10.6);
- (void)yieldActivationToApplication:(NSRunningApplication*)application SINCE_MACOS(14.0);
- (void)run;
- (void)activate SINCE_MACOS(14.0);
- (void)activateIgnoringOtherApps:(BOOL)isForced;
- (void)orderFrontStandardAboutPanel:(nullable id)sender;
- (void)hide:(nullable id)sender;
- (void)hideOtherApplications:(nullable id)sender;
- (void)unhideAllApplications:(nullable id)sender;
- (void)arrangeInFront:(nullable id)sender;
- (void)terminate:(nullable id)sender;
@end
extern __kindof NSApplication* _Null_unspecified NSApp;

@interface NSStatusBarButton : NSButton
@end

@interface NSStatusItem : NSObject
@property(nullable, readonly, strong) NSStatusBarButton* button SINCE_MACOS(10.10);
@property(nullable, strong) NSMenu* menu;
@end

static const CGFloat NSVariableStatusItemLength = -1;
// Retains no item.
@interface NSStatusBar : NSObject
@property(class, readonly, strong) NSStatusBar* systemStatusBar;
- (NSStatusItem*)statusItemWithLength:(CGFloat)length;
- (void)removeStatusItem:(NSStatusItem*)item;
@end

NS_ASSUME_NONNULL_END
