#pragma once

#include <Availability.h>

#ifdef __OBJC__
#include <objc/objc.h>
@protocol OS_dispatch_queue <NSObject>
@end
typedef NSObject<OS_dispatch_queue>* dispatch_queue_t;
typedef NSObject* dispatch_queue_attr_t;
@protocol OS_dispatch_source <NSObject>
@end
typedef NSObject<OS_dispatch_source>* dispatch_source_t;
typedef dispatch_source_t dispatch_object_t;
#else
typedef struct dispatch_queue_s* dispatch_queue_t;
typedef struct dispatch_queue_attr_s* dispatch_queue_attr_t;
typedef struct dispatch_source_s* dispatch_source_t;
typedef dispatch_source_t dispatch_object_t;
#endif
#include <stdint.h>

typedef void (*dispatch_function_t)(void* context);
typedef void (^dispatch_block_t)(void);

#ifdef __cplusplus
extern "C" {
#endif
#define DISPATCH_QUEUE_SERIAL ((dispatch_queue_attr_t)0)
dispatch_queue_t dispatch_queue_create(const char* label, dispatch_queue_attr_t attributes)
    __attribute__((ns_returns_retained));

extern struct dispatch_queue_s _dispatch_main_q;
#ifdef __OBJC__
#define dispatch_get_main_queue() ((__bridge dispatch_queue_t) & _dispatch_main_q)
#else
#define dispatch_get_main_queue() (&_dispatch_main_q)
void dispatch_release(dispatch_queue_t queue); // under ARC, queues are objects like others
#endif

void dispatch_async(dispatch_queue_t queue, dispatch_block_t block);
void dispatch_sync_f(dispatch_queue_t queue, void* context, dispatch_function_t work);

struct dispatch_source_type_s;
typedef const struct dispatch_source_type_s* dispatch_source_type_t;
extern const struct dispatch_source_type_s _dispatch_source_type_proc;
extern const struct dispatch_source_type_s _dispatch_source_type_read;
extern const struct dispatch_source_type_s _dispatch_source_type_signal;
#define DISPATCH_SOURCE_TYPE_PROC (&_dispatch_source_type_proc)
#define DISPATCH_PROC_EXIT 0x80000000U
#define DISPATCH_SOURCE_TYPE_READ (&_dispatch_source_type_read)
#define DISPATCH_SOURCE_TYPE_SIGNAL (&_dispatch_source_type_signal)
dispatch_source_t dispatch_source_create(dispatch_source_type_t type, uintptr_t handle,
                                         uintptr_t mask, dispatch_queue_t queue)
    __attribute__((ns_returns_retained)) SINCE_MACOS(10.6);
void dispatch_source_set_event_handler(dispatch_source_t source, dispatch_block_t handler)
    SINCE_MACOS(10.6);
void dispatch_source_set_cancel_handler(dispatch_source_t source, dispatch_block_t handler)
    SINCE_MACOS(10.6);
void dispatch_source_cancel(dispatch_source_t source) SINCE_MACOS(10.6);
void dispatch_resume(dispatch_object_t object) SINCE_MACOS(10.6);
#ifdef __cplusplus
}
#endif
