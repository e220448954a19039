#pragma once

#include <AppKit/NSWindows.h>

// What AppKit.h includes about controls, all to be used on the main thread.

NS_ASSUME_NONNULL_BEGIN

@interface NSColor : NSObject
@property(class, readonly, strong) NSColor* secondaryLabelColor SINCE_MACOS(10.10);
@property(class, readonly, strong) NSColor* systemRedColor SINCE_MACOS(10.10);
@property(class, readonly, strong) NSColor* windowBackgroundColor;
@end

@interface NSFont : NSObject
+ (NSFont*)boldSystemFontOfSize:(CGFloat)size;
@end

typedef NSString* NSAppearanceName;
extern NSAppearanceName const NSAppearanceNameAqua SINCE_MACOS(10.9);
extern NSAppearanceName const NSAppearanceNameDarkAqua SINCE_MACOS(10.14);
SINCE_MACOS(10.9)
@interface NSAppearance : NSObject
+ (nullable NSAppearance*)appearanceNamed:(NSAppearanceName)name;
@end

@interface NSImage : NSObject
+ (nullable instancetype)imageWithSystemSymbolName:(NSString*)name
                          accessibilityDescription:(nullable NSString*)description
    SINCE_MACOS(11.0);
@property NSSize size;
- (void)setTemplate:(BOOL)isTemplate;
@end

typedef enum NSCellImagePosition : NSUInteger {
    NSImageLeading SINCE_MACOS(10.12) = 7
} NSCellImagePosition;
typedef NSInteger NSControlStateValue;
static const NSControlStateValue NSControlStateValueOff = 0;
static const NSControlStateValue NSControlStateValueOn = 1;

@interface NSCell : NSObject
@property BOOL sendsActionOnEndEditing;
@end

// Its target is not retained.
@interface NSControl : NSView
@property(nullable, strong) __kindof NSCell* cell;
@property(nullable, strong) NSFont* font;
@property(nullable, weak) id target;
@property(nullable) SEL action;
@property(getter=isEnabled) BOOL enabled;
@property double doubleValue;
@property(copy) NSString* stringValue;
- (void)sizeToFit;
@end

@interface NSButton : NSControl
+ (instancetype)buttonWithTitle:(NSString*)title
                         target:(nullable id)target
                         action:(nullable SEL)action SINCE_MACOS(10.12);
+ (instancetype)buttonWithImage:(NSImage*)image
                         target:(nullable id)target
                         action:(nullable SEL)action SINCE_MACOS(10.12);
@property(copy) NSString* title;
@property(nullable, strong) NSImage* image;
@property NSCellImagePosition imagePosition;
@property NSControlStateValue state;
@end

@interface NSPopUpButton : NSButton
- (instancetype)initWithFrame:(NSRect)frame pullsDown:(BOOL)pullsDown;
@property BOOL autoenablesItems;
@property(readonly) NSInteger indexOfSelectedItem;
- (void)addItemWithTitle:(NSString*)title;
- (nullable NSMenuItem*)itemAtIndex:(NSInteger)index;
- (void)selectItemAtIndex:(NSInteger)index;
@end

@interface NSStepper : NSControl
@property double minValue;
@property double maxValue;
@property double increment;
@property BOOL valueWraps;
@end

@interface NSImageView : NSControl
@property(nullable, strong) NSImage* image;
@end

typedef enum NSLineBreakMode : NSUInteger { NSLineBreakByTruncatingTail = 4 } NSLineBreakMode;

@interface NSTextField : NSControl
+ (instancetype)labelWithString:(NSString*)text SINCE_MACOS(10.12);
+ (instancetype)wrappingLabelWithString:(NSString*)text SINCE_MACOS(10.12);
+ (instancetype)textFieldWithString:(NSString*)text SINCE_MACOS(10.12);
@property(nullable, copy) NSString* placeholderString SINCE_MACOS(10.10);
@property(nullable, copy) NSColor* textColor;
@property NSLineBreakMode lineBreakMode SINCE_MACOS(10.10);
@property NSInteger maximumNumberOfLines SINCE_MACOS(10.11);
@end

@interface NSSecureTextField : NSTextField
@end

@interface NSTextView : NSView
@end

@protocol NSControlTextEditingDelegate <NSObject>
@optional
- (BOOL)control:(NSControl*)control
               textView:(NSTextView*)textView
    doCommandBySelector:(SEL)selector;
@end
@protocol NSTextFieldDelegate <NSControlTextEditingDelegate>
@end
@protocol NSSearchFieldDelegate <NSTextFieldDelegate>
@end

@interface NSSearchField : NSTextField
@property(nullable, weak) id<NSSearchFieldDelegate> delegate SINCE_MACOS(10.11);
@end

typedef enum NSProgressIndicatorStyle : NSUInteger {
    NSProgressIndicatorStyleBar = 0
} NSProgressIndicatorStyle;
@interface NSProgressIndicator : NSView
@property NSProgressIndicatorStyle style;
@property(getter=isIndeterminate) BOOL indeterminate;
@property double doubleValue;
@property double minValue;
@property double maxValue;
@end

// What is done with a selection of text, by the object that has it.
@protocol NSStandardTextCommands
- (void)undo:(nullable id)sender;
- (void)redo:(nullable id)sender;
- (void)cut:(nullable id)sender;
- (void)copy:(nullable id)sender;
- (void)paste:(nullable id)sender;
- (void)selectAll:(nullable id)sender;
- (void)cancelOperation:(nullable id)sender;
- (void)showGuessPanel:(nullable id)sender;
- (void)checkSpelling:(nullable id)sender;
- (void)toggleContinuousSpellChecking:(nullable id)sender;
@end

typedef enum NSAlertStyle : NSUInteger {
    NSAlertStyleWarning,
    NSAlertStyleInformational,
    NSAlertStyleCritical
} NSAlertStyle;

@interface NSAlert : NSObject
@property(copy) NSString* messageText;
@property(copy) NSString* informativeText;
@property NSAlertStyle alertStyle;
@property(nullable, strong) NSView* accessoryView SINCE_MACOS(10.5);
@property(readonly, strong) NSWindow* window;
@property BOOL showsSuppressionButton SINCE_MACOS(10.5);
@property(nullable, readonly, strong) NSButton* suppressionButton SINCE_MACOS(10.5);
- (NSButton*)addButtonWithTitle:(NSString*)title;
- (void)beginSheetModalForWindow:(NSWindow*)window
               completionHandler:(void (^_Nullable)(NSModalResponse response))handler
    SINCE_MACOS(10.9);
@end

typedef NSString* NSPasteboardType;
extern NSPasteboardType const NSPasteboardTypeString SINCE_MACOS(10.6);
@interface NSPasteboard : NSObject
@property(class, readonly, strong) NSPasteboard* generalPasteboard;
- (NSInteger)clearContents SINCE_MACOS(10.6);
- (BOOL)setString:(NSString*)text forType:(NSPasteboardType)type;
@end

@interface NSPrintInfo : NSObject
@property(class, strong) NSPrintInfo* sharedPrintInfo;
@end

@interface NSPrintOperation : NSObject
@property(nullable, readonly, strong) NSView* view;
- (void)runOperationModalForWindow:(NSWindow*)window
                          delegate:(nullable id)delegate
                    didRunSelector:(nullable SEL)selector
                       contextInfo:(nullable void*)context;
@end

NS_ASSUME_NONNULL_END
