#pragma once

#include_next <fcntl.h>

// Opens a folder for looking up names only.
#define O_SEARCH (0x40000000 | O_DIRECTORY)
