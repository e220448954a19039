// expected: cannot initialize return object of type 'CFStringRef'
#import <Foundation/Foundation.h>

CFStringRef converted(NSString* text) { return text; }
