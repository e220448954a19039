// expected: cannot initialize a parameter of type 'NSString * _Nonnull'
#import <AppKit/AppKit.h>

NSBundle* bundle(NSURL* folder) { return [NSBundle bundleWithPath:folder]; }
