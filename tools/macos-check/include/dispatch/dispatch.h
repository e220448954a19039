#pragma once

#include <Availability.h>

#ifdef __OBJC__
#include <objc/objc.h>
@protocol OS_dispatch_queue <NSObject>
@end
typedef NSObject<OS_dispatch_queue>* dispatch_queue_t;
typedef NSObject* dispatch_queue_attr_t;
#else
typedef struct dispatch_queue_s* dispatch_queue_t;
typedef struct dispatch_queue_attr_s* dispatch_queue_attr_t;
#endif

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
#ifdef __cplusplus
}
#endif
