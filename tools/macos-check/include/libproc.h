#pragma once

#include <Availability.h>
#include <sys/types.h>

#ifdef __cplusplus
extern "C" {
#endif
int proc_listchildpids(pid_t parent, void* buffer, int size) SINCE_MACOS(10.7);
#ifdef __cplusplus
}
#endif
