#pragma once

#include_next <sys/socket.h>

// An option of a socket, instead of Linux's flag for each send().
#define SO_NOSIGPIPE 0x1022
#undef MSG_NOSIGNAL
