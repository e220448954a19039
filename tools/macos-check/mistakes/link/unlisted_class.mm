// expected: undefined symbol: _OBJC_CLASS_$_NSError
#import <Foundation/Foundation.h>

Class failure() { return NSError.class; }
