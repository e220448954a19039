// expected: nothing keeps this target: action
#import <AppKit/AppKit.h>

@interface Action : NSObject
- (void)act:(id)sender;
@end

void onAction(NSControl* control, Action* (^make)(void)) {
    Action* const action = make();
    control.target = action;
    control.action = @selector(act:);
}
