// expected: undefined symbol: _fdopen
#include <cstdio>

std::FILE* stream(int descriptor) {
    return fdopen(descriptor, "r");
}
