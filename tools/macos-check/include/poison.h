// Included before every source: names that glibc declares and macOS 13 does not have. The headers
// that declare them come first, since a poisoned name may not even be declared.

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <sched.h>
#include <signal.h>
#include <spawn.h>
#include <stddef.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

// Macros of these names, and macros that would spell one of them.
#undef MSG_CMSG_CLOEXEC
#undef O_PATH
#undef O_TMPFILE
#undef RENAME_NOREPLACE
#undef SOCK_CLOEXEC
#undef SOCK_NONBLOCK
#undef st_atime
#undef st_ctime
#undef st_mtime

// Files
#pragma GCC poison O_PATH O_TMPFILE copy_file_range fallocate posix_fallocate posix_fadvise
#pragma GCC poison renameat2 RENAME_NOREPLACE sendfile64 statx sync_file_range memfd_create mremap
#pragma GCC poison st_atim st_ctim st_mtim canonicalize_file_name get_current_dir_name euidaccess
// Descriptors and sockets
#pragma GCC poison accept4 close_range dup3 pipe2 ppoll SOCK_CLOEXEC SOCK_NONBLOCK MSG_CMSG_CLOEXEC
#pragma GCC poison epoll_create epoll_create1 eventfd inotify_init inotify_init1 inotify_add_watch
#pragma GCC poison signalfd timerfd_create
// Processes, threads and signals
#pragma GCC poison execvpe gettid tgkill pidfd_open prctl program_invocation_name
#pragma GCC poison program_invocation_short_name posix_spawn_file_actions_addclosefrom_np
#pragma GCC poison pthread_setaffinity_np sched_setaffinity pthread_tryjoin_np pthread_timedjoin_np
#pragma GCC poison sigqueue sigtimedwait sigwaitinfo sem_timedwait
// Text, memory and numbers
#pragma GCC poison explicit_bzero getrandom mempcpy memrchr rawmemchr secure_getenv strchrnul
#pragma GCC poison strverscmp qsort_r reallocarray
