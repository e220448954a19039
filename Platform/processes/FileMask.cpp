#include "Platform/processes/FileMask.h"

#include <sys/stat.h>

namespace quorvel {

mode_t setFileMask(mode_t mask) {
    return ::umask(mask);
}

} // namespace quorvel
