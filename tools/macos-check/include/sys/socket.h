#pragma once

#include_next <sys/socket.h>

// What takes the place of a flag of each sending.
#define SO_NOSIGPIPE 0x1022
#undef MSG_NOSIGNAL
