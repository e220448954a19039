// expected: attempt to use a poisoned identifier
#include <sys/stat.h>

long changed(const struct stat& status) {
    return status.st_mtim.tv_nsec;
}
