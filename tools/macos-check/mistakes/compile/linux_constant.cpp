// expected: attempt to use a poisoned identifier
#include <fcntl.h>

int openPlace(const char* path) {
    return open(path, O_PATH);
}
