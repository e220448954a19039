#pragma once

#include <Availability.h>
#include <TargetConditionals.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __OBJC__
#define BRIDGED_TO(type) __attribute__((objc_bridge(type)))
#else
#define BRIDGED_TO(type)
#endif
#define CF_RETURNS_RETAINED __attribute__((cf_returns_retained))

#ifdef __cplusplus
extern "C" {
#endif

typedef unsigned char Boolean;
typedef uint8_t UInt8;
typedef uint32_t UInt32;
typedef int32_t SInt32;
typedef uint64_t UInt64;
typedef long CFIndex;
typedef double CFTimeInterval;
typedef double CGFloat;
typedef struct CGPoint {
    CGFloat x;
    CGFloat y;
} CGPoint;
typedef struct CGSize {
    CGFloat width;
    CGFloat height;
} CGSize;
typedef struct CGRect {
    CGPoint origin;
    CGSize size;
} CGRect;
typedef const void* CFTypeRef;
typedef const struct BRIDGED_TO(NSString) __CFString* CFStringRef;
typedef const struct BRIDGED_TO(NSArray) __CFArray* CFArrayRef;
typedef const struct BRIDGED_TO(NSData) __CFData* CFDataRef;
typedef const struct BRIDGED_TO(NSDictionary) __CFDictionary* CFDictionaryRef;
typedef struct BRIDGED_TO(NSError) __CFError* CFErrorRef;
typedef struct BRIDGED_TO(NSMutableArray) __CFArray* CFMutableArrayRef;
typedef const struct __CFAllocator* CFAllocatorRef;
typedef struct __CFRunLoop* CFRunLoopRef;

extern const CFAllocatorRef kCFAllocatorDefault;
void CFRelease(CFTypeRef object);

// Text in the form that the file system wants.
CFStringRef CFStringCreateWithFileSystemRepresentation(CFAllocatorRef allocator,
                                                       const char* buffer) CF_RETURNS_RETAINED;
CFIndex CFStringGetMaximumSizeOfFileSystemRepresentation(CFStringRef string);
Boolean CFStringGetFileSystemRepresentation(CFStringRef string, char* buffer, CFIndex size);

typedef UInt32 CFStringEncoding;
enum { kCFStringEncodingUTF8 = 0x08000100 };
Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size,
                           CFStringEncoding encoding);

typedef const struct __CFLocale* CFLocaleRef;
CFLocaleRef CFLocaleCopyCurrent(void) CF_RETURNS_RETAINED;
CFStringRef CFLocaleGetIdentifier(CFLocaleRef locale);

typedef struct {
    CFIndex version;
    const void* functions[4];
} CFArrayCallBacks;
extern const CFArrayCallBacks kCFTypeArrayCallBacks;
CFMutableArrayRef CFArrayCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                       const CFArrayCallBacks* callBacks) CF_RETURNS_RETAINED;
void CFArrayAppendValue(CFMutableArrayRef array, const void* value);
CFIndex CFArrayGetCount(CFArrayRef array);
const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index);

typedef CFStringRef CFRunLoopMode;
typedef SInt32 CFRunLoopRunResult;
enum {
    kCFRunLoopRunFinished = 1,
    kCFRunLoopRunStopped = 2,
    kCFRunLoopRunTimedOut = 3,
    kCFRunLoopRunHandledSource = 4
};
extern const CFRunLoopMode kCFRunLoopDefaultMode;
CFRunLoopRef CFRunLoopGetMain(void);
CFRunLoopMode CFRunLoopCopyCurrentMode(CFRunLoopRef loop) CF_RETURNS_RETAINED;
CFRunLoopRunResult CFRunLoopRunInMode(CFRunLoopMode mode, CFTimeInterval seconds,
                                      Boolean returnAfterSourceHandled);

#ifdef __cplusplus
}
#endif
