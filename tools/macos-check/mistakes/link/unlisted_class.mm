// expected: undefined symbol: _OBJC_CLASS_$_NSString
#import <Foundation/Foundation.h>

Class text() { return NSString.class; }
