#pragma once

#include <objc/objc.h>

#include <stdint.h>

typedef uintptr_t objc_AssociationPolicy;
enum : uintptr_t { OBJC_ASSOCIATION_RETAIN_NONATOMIC = 1 };

#ifdef __cplusplus
extern "C" {
#endif
void objc_setAssociatedObject(id _Nonnull object, const void* _Nonnull key, id _Nullable value,
                              objc_AssociationPolicy policy) SINCE_MACOS(10.6);
#ifdef __cplusplus
}
#endif
