#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <objc/objc.h>

NS_ASSUME_NONNULL_BEGIN

@class NSError;

@interface NSString : NSObject
+ (nullable instancetype)stringWithUTF8String:(const char*)text;
@property(nullable, readonly) const char* UTF8String;
- (NSString*)stringByAppendingPathComponent:(NSString*)component;
@end

typedef NSString* NSKeyValueChangeKey;
@interface NSDictionary<Key, Value> : NSObject
@end

@interface NSArray<__covariant Element> : NSObject
+ (instancetype)arrayWithObjects:(const Element _Nonnull[_Nullable])objects count:(NSUInteger)count;
- (NSUInteger)countByEnumeratingWithState:(void*)state
                                  objects:(id _Nullable __unsafe_unretained[_Nonnull])buffer
                                    count:(NSUInteger)count;
@end

@interface NSURL : NSObject
+ (NSURL*)fileURLWithFileSystemRepresentation:(const char*)path
                                  isDirectory:(BOOL)isDirectory
                                relativeToURL:(nullable NSURL*)base SINCE_MACOS(10.9);
@property(readonly) const char* fileSystemRepresentation SINCE_MACOS(10.9);
@end

@interface NSError : NSObject
@property(readonly, copy) NSString* localizedDescription;
@end

@interface NSBundle : NSObject
@property(class, readonly, strong) NSBundle* mainBundle;
+ (nullable instancetype)bundleWithPath:(NSString*)path;
- (BOOL)loadAndReturnError:(NSError* _Nullable __autoreleasing* _Nullable)error SINCE_MACOS(10.5);
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
