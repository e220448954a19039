#include "WebHost/Settings/SettingsRows_macos.h"

#include "WebHost/NSText_macos.h"
#include "WebHost/Window/WindowBars_macos.h"

#import <objc/runtime.h>

#include <utility>

/// What a control calls. A control doesn't retain its target.
@interface QuorvelAction : NSObject
- (nonnull instancetype)initWithFunction:(std::function<void()>)function;
- (void)act:(nullable id)sender;
@end

@implementation QuorvelAction {
    std::function<void()> _function;
}

- (instancetype)initWithFunction:(std::function<void()>)function {
    self = [super init];
    if (self != nil) {
        _function = std::move(function);
    }
    return self;
}

- (void)act:(id)sender {
    (void)sender;
    const auto function = _function; // may be the end of the control, and so of this object
    function();
}

@end

/// Shows its document from the top, and not from the bottom.
@interface QuorvelTopView : NSClipView
@end

@implementation QuorvelTopView

- (BOOL)isFlipped {
    return YES;
}

@end

namespace quorvel {
namespace {

constexpr CGFloat space = 6;
const char actionKey = 0;

void fillWidth(NSView* view, NSView* outer, CGFloat margin) {
    view.translatesAutoresizingMaskIntoConstraints = NO;
    [view.leadingAnchor constraintEqualToAnchor:outer.leadingAnchor constant:margin].active = YES;
    [view.trailingAnchor constraintEqualToAnchor:outer.trailingAnchor constant:-margin].active =
        YES;
}

// Fills its width.
NSStackView* newLine(NSArray<NSView*>* views) {
    NSStackView* const line = [NSStackView stackViewWithViews:views];
    line.orientation = NSUserInterfaceLayoutOrientationHorizontal;
    line.distribution = NSStackViewDistributionFill;
    line.spacing = 2 * space;
    return line;
}

NSView* newRow(const RemovableRow& row) {
    NSTextField* const text = newBarLabel();
    text.stringValue = nsText(row.text);
    text.toolTip = text.stringValue;
    NSButton* const remove = newButton(@"Remove", row.remove);
    remove.accessibilityLabel = nsText(row.removes);
    return newLine(@[ text, remove ]);
}

} // namespace

void onAction(NSControl* control, std::function<void()> used) {
    NS_VALID_UNTIL_END_OF_SCOPE QuorvelAction* const action =
        [[QuorvelAction alloc] initWithFunction:std::move(used)];
    objc_setAssociatedObject(control, &actionKey, action, OBJC_ASSOCIATION_RETAIN_NONATOMIC);
    control.target = action;
    control.action = @selector(act:);
}

NSStackView* newColumn(NSArray<NSView*>* views) {
    NSStackView* const column = [NSStackView stackViewWithViews:views];
    column.orientation = NSUserInterfaceLayoutOrientationVertical;
    column.alignment = NSLayoutAttributeWidth;
    column.spacing = space;
    return column;
}

NSStackView* newSection(NSString* heading) {
    constexpr CGFloat size = 13;
    NSTextField* const label = [NSTextField labelWithString:heading];
    label.font = [NSFont boldSystemFontOfSize:size];
    NSStackView* const section = newColumn(@[ label ]);
    section.edgeInsets = {2 * space, 0, 0, 0};
    return section;
}

void addSetting(NSStackView* section, NSString* name, NSView* control) {
    constexpr CGFloat width = 150;
    NSTextField* const label = [NSTextField labelWithString:name];
    [label.widthAnchor constraintEqualToConstant:width].active = YES;
    control.accessibilityLabel = name;
    [section addArrangedSubview:newLine(@[ label, control ])];
}

NSTextField* newHint(const std::string& text) {
    NSTextField* const hint = [NSTextField wrappingLabelWithString:nsText(text)];
    hint.textColor = NSColor.secondaryLabelColor;
    return hint;
}

NSTextField* newField(NSString* placeholder, std::function<void()> entered) {
    NSTextField* const field = [NSTextField textFieldWithString:@""];
    field.placeholderString = placeholder;
    field.cell.sendsActionOnEndEditing = YES;
    onAction(field, std::move(entered));
    return field;
}

NSPopUpButton* newChoice(NSArray<NSString*>* texts, std::function<void()> chosen) {
    NSPopUpButton* const choice = [[NSPopUpButton alloc] initWithFrame:{
        {0, 0}, { 0, 0 }
    }
                                                             pullsDown:NO];
    choice.autoenablesItems = NO;
    for (NSString* text in texts) {
        [choice addItemWithTitle:text];
    }
    onAction(choice, std::move(chosen));
    return choice;
}

NSButton* newButton(NSString* title, std::function<void()> clicked) {
    NSButton* const button = [NSButton buttonWithTitle:title target:nil action:nullptr];
    onAction(button, std::move(clicked));
    return button;
}

void addButton(NSStackView* section, NSButton* button) {
    // Alone in a line, it keeps its width.
    [section addArrangedSubview:[NSStackView stackViewWithViews:@[ button ]]];
}

void fillList(NSStackView* list, const std::vector<RemovableRow>& rows, const char* ifEmpty) {
    for (NSView* old in [list.arrangedSubviews copy]) {
        [old removeFromSuperview];
    }
    for (const RemovableRow& row : rows) {
        [list addArrangedSubview:newRow(row)];
    }
    if (rows.empty()) {
        [list addArrangedSubview:newHint(ifEmpty)];
    }
}

void scrollThrough(NSWindow* window, NSStackView* column) {
    constexpr CGFloat margin = 18;
    NSScrollView* const scroll = [[NSScrollView alloc] initWithFrame:{{0, 0}, {0, 0}}];
    NSClipView* const clip = [[QuorvelTopView alloc] initWithFrame:scroll.bounds];
    clip.drawsBackground = NO;
    scroll.contentView = clip;
    scroll.hasVerticalScroller = YES;
    scroll.drawsBackground = NO;
    scroll.documentView = column;
    fillWidth(column, clip, margin);
    [column.topAnchor constraintEqualToAnchor:clip.topAnchor constant:margin].active = YES;
    column.edgeInsets = {0, 0, margin, 0};
    window.contentView = scroll;
}

} // namespace quorvel
