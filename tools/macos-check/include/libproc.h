#pragma once

#include <Availability.h>
#include <stdint.h>
#include <sys/types.h>

#define PROC_PIDTBSDINFO 3
#define PROC_PIDPATHINFO_MAXSIZE 4096

struct proc_bsdinfo {
    uint64_t pbi_start_tvsec;
    uint64_t pbi_start_tvusec;
};

#ifdef __cplusplus
extern "C" {
#endif
int proc_pidinfo(int pid, int flavor, uint64_t argument, void* buffer, int size) SINCE_MACOS(10.5);
int proc_listallpids(void* buffer, int size) SINCE_MACOS(10.7);
int proc_pidpath(int pid, void* buffer, uint32_t size) SINCE_MACOS(10.5);
int proc_listchildpids(pid_t parent, void* buffer, int size) SINCE_MACOS(10.7);
#ifdef __cplusplus
}
#endif
