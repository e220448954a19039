// expected: ARC forbids explicit message send of 'release'
#import <Foundation/Foundation.h>

@interface NSObject (Manual)
- (void)release;
@end

void drop(NSObject* object) { [object release]; }
