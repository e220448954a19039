#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <dispatch/dispatch.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct __FSEventStream* FSEventStreamRef;
typedef const struct __FSEventStream* ConstFSEventStreamRef;
typedef UInt64 FSEventStreamEventId;
typedef UInt32 FSEventStreamEventFlags;
typedef UInt32 FSEventStreamCreateFlags;
enum {
    kFSEventStreamCreateFlagUseCFTypes = 0x00000001,
    kFSEventStreamCreateFlagNoDefer = 0x00000002,
    kFSEventStreamCreateFlagFileEvents = 0x00000010
};
static const FSEventStreamEventId kFSEventStreamEventIdSinceNow = 0xFFFFFFFFFFFFFFFFULL;

typedef struct {
    CFIndex version;
    void* info; // not retained without the functions
    const void* (*retain)(const void* info);
    void (*release)(const void* info);
    CFStringRef (*copyDescription)(const void* info);
} FSEventStreamContext;

typedef void (*FSEventStreamCallback)(ConstFSEventStreamRef stream, void* info, size_t count,
                                      void* paths, const FSEventStreamEventFlags* flags,
                                      const FSEventStreamEventId* identifiers);

// Released by its own function, so the ownership checks don't follow it.
FSEventStreamRef FSEventStreamCreate(CFAllocatorRef allocator, FSEventStreamCallback callback,
                                     FSEventStreamContext* context, CFArrayRef paths,
                                     FSEventStreamEventId since, CFTimeInterval latency,
                                     FSEventStreamCreateFlags flags) SINCE_MACOS(10.5);
void FSEventStreamSetDispatchQueue(FSEventStreamRef stream, dispatch_queue_t queue)
    SINCE_MACOS(10.6);
Boolean FSEventStreamStart(FSEventStreamRef stream) SINCE_MACOS(10.5);
void FSEventStreamFlushSync(FSEventStreamRef stream) SINCE_MACOS(10.5);
void FSEventStreamStop(FSEventStreamRef stream) SINCE_MACOS(10.5);
void FSEventStreamInvalidate(FSEventStreamRef stream) SINCE_MACOS(10.5);
void FSEventStreamRelease(FSEventStreamRef stream) SINCE_MACOS(10.5);

// Where a file is from, which the system checks before it is opened.
extern const CFStringRef kLSQuarantineTypeKey SINCE_MACOS(10.5);
extern const CFStringRef kLSQuarantineTypeWebDownload SINCE_MACOS(10.5);
extern const CFStringRef kLSQuarantineDataURLKey SINCE_MACOS(10.5);

#ifdef __cplusplus
}
#endif
