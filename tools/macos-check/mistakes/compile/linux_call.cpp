// expected: attempt to use a poisoned identifier
#include <fcntl.h>
#include <unistd.h>

bool makePipe(int* ends) {
    return pipe2(ends, O_CLOEXEC) == 0;
}
