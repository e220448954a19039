#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <objc/objc.h>

NS_ASSUME_NONNULL_BEGIN

@class NSError;

// A local object lasts to the end of its scope, and not only until it is used for the last time.
#define NS_VALID_UNTIL_END_OF_SCOPE __attribute__((objc_precise_lifetime))

typedef CGPoint NSPoint;
typedef CGSize NSSize;
typedef CGRect NSRect;
typedef double NSTimeInterval;
typedef struct {
    NSUInteger location;
    NSUInteger length;
} NSRange;
static const NSInteger NSNotFound = __LONG_MAX__;

@interface NSString : NSObject
+ (nullable instancetype)stringWithUTF8String:(const char*)text;
@property(nullable, readonly) const char* UTF8String;
@property(readonly) NSUInteger length;
@property(readonly, copy) NSString* lowercaseString;
- (BOOL)isEqualToString:(NSString*)other;
- (NSString*)stringByAppendingString:(NSString*)other;
- (NSString*)stringByAppendingPathComponent:(NSString*)component;
- (NSString*)substringWithRange:(NSRange)range;
@end

@interface NSNumber : NSObject
@property(readonly) double doubleValue;
@end

@class NSSet<Element>;
@interface NSData : NSObject
@property(readonly) NSUInteger length;
@property(readonly) const void* bytes;
@end

@interface NSDate : NSObject
@property(class, readonly, copy) NSDate* distantPast;
@end

typedef NSString* NSKeyValueChangeKey;
@interface NSDictionary<Key, Value> : NSObject
+ (instancetype)dictionaryWithObjects:(const Value _Nonnull[_Nullable])objects
                              forKeys:(const id _Nonnull[_Nullable])keys
                                count:(NSUInteger)count;
- (nullable Value)objectForKeyedSubscript:(Key)key;
@end

@interface NSMutableDictionary<Key, Value> : NSDictionary <Key, Value>
+ (instancetype)dictionary;
- (void)setObject:(nullable Value)object forKeyedSubscript:(Key)key;
@end

@interface NSArray<__covariant Element> : NSObject
+ (instancetype)array;
+ (instancetype)arrayWithObjects:(const Element _Nonnull[_Nullable])objects count:(NSUInteger)count;
@property(readonly) NSUInteger count;
- (BOOL)containsObject:(Element)object;
- (Element)objectAtIndexedSubscript:(NSUInteger)index;
- (NSUInteger)countByEnumeratingWithState:(void*)state
                                  objects:(id _Nullable __unsafe_unretained[_Nonnull])buffer
                                    count:(NSUInteger)count;
@end

@interface NSMutableArray<Element> : NSArray <Element>
- (void)addObject:(Element)object;
- (void)removeObject:(Element)object;
- (void)removeAllObjects;
@end

typedef NSString* NSURLResourceKey;
extern NSURLResourceKey const NSURLQuarantinePropertiesKey SINCE_MACOS(10.10);

@interface NSURL : NSObject
+ (nullable instancetype)URLWithString:(NSString*)text;
+ (NSURL*)fileURLWithFileSystemRepresentation:(const char*)path
                                  isDirectory:(BOOL)isDirectory
                                relativeToURL:(nullable NSURL*)base SINCE_MACOS(10.9);
@property(nullable, readonly, copy) NSString* absoluteString;
@property(readonly) const char* fileSystemRepresentation SINCE_MACOS(10.9);
- (BOOL)setResourceValue:(nullable id)value
                  forKey:(NSURLResourceKey)key
                   error:(NSError* _Nullable __autoreleasing* _Nullable)error SINCE_MACOS(10.6);
@end

typedef NSString* NSErrorDomain;
typedef NSString* NSErrorUserInfoKey;
@interface NSError : NSObject
@property(readonly, copy) NSErrorDomain domain;
@property(readonly) NSInteger code;
@property(readonly, copy) NSDictionary<NSErrorUserInfoKey, id>* userInfo;
@property(readonly, copy) NSString* localizedDescription;
@end

@interface NSBundle : NSObject
@property(class, readonly, strong) NSBundle* mainBundle;
+ (nullable instancetype)bundleWithPath:(NSString*)path;
- (BOOL)loadAndReturnError:(NSError* _Nullable __autoreleasing* _Nullable)error SINCE_MACOS(10.5);
@property(nullable, readonly, copy) NSString* bundleIdentifier;
@property(nullable, readonly, copy) NSString* privateFrameworksPath;
- (nullable Class)classNamed:(NSString*)name;
- (nullable id)objectForInfoDictionaryKey:(NSString*)key;
@end

typedef struct {
    NSInteger majorVersion;
    NSInteger minorVersion;
    NSInteger patchVersion;
} NSOperatingSystemVersion;
@interface NSProcessInfo : NSObject
@property(class, readonly, strong) NSProcessInfo* processInfo;
@property(readonly) NSOperatingSystemVersion operatingSystemVersion SINCE_MACOS(10.10);
@end

@interface NSUUID : NSObject
- (nullable instancetype)initWithUUIDString:(NSString*)text SINCE_MACOS(10.8);
@property(readonly, copy) NSString* UUIDString SINCE_MACOS(10.8);
@end

@interface NSUserDefaults : NSObject
@property(class, readonly, strong) NSUserDefaults* standardUserDefaults;
- (nullable NSString*)stringForKey:(NSString*)key;
- (void)setObject:(nullable id)value forKey:(NSString*)key;
@end

@interface NSTimer : NSObject
// The run loop keeps it until it is invalid.
+ (NSTimer*)scheduledTimerWithTimeInterval:(NSTimeInterval)interval
                                   repeats:(BOOL)repeats
                                     block:(void (^)(NSTimer* timer))block SINCE_MACOS(10.12);
- (void)invalidate;
@end

@interface NSProgress : NSObject
@property(readonly) double fractionCompleted SINCE_MACOS(10.9);
@end

typedef NSUInteger NSRegularExpressionOptions;
typedef NSUInteger NSMatchingOptions;
@interface NSTextCheckingResult : NSObject
@property(readonly) NSUInteger numberOfRanges SINCE_MACOS(10.7);
- (NSRange)rangeAtIndex:(NSUInteger)index SINCE_MACOS(10.7);
@end

@interface NSRegularExpression : NSObject
+ (nullable NSRegularExpression*)
    regularExpressionWithPattern:(NSString*)pattern
                         options:(NSRegularExpressionOptions)options
                           error:(NSError* _Nullable __autoreleasing* _Nullable)error
    SINCE_MACOS(10.7);
- (nullable NSTextCheckingResult*)firstMatchInString:(NSString*)text
                                             options:(NSMatchingOptions)options
                                               range:(NSRange)range SINCE_MACOS(10.7);
@end

@interface NSNotification : NSObject
@end

@interface NSThread : NSObject
@property(class, readonly) BOOL isMainThread;
@end

// In C++ an option set is a plain integer, so that `a | b` is one as well.
typedef NSUInteger NSKeyValueObservingOptions;
enum : NSUInteger { NSKeyValueObservingOptionNew = 0x01, NSKeyValueObservingOptionInitial = 0x04 };
@interface NSObject (NSKeyValueObserving)
- (void)addObserver:(NSObject*)observer
         forKeyPath:(NSString*)keyPath
            options:(NSKeyValueObservingOptions)options
            context:(nullable void*)context;
- (void)removeObserver:(NSObject*)observer
            forKeyPath:(NSString*)keyPath
               context:(nullable void*)context SINCE_MACOS(10.7);
- (void)observeValueForKeyPath:(nullable NSString*)keyPath
                      ofObject:(nullable id)object
                        change:(nullable NSDictionary<NSKeyValueChangeKey, id>*)change
                       context:(nullable void*)context;
@end

NS_ASSUME_NONNULL_END

#include <Foundation/NSURLLoading.h>
