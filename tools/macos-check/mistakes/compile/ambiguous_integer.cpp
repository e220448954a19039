// expected: call to 'show' is ambiguous
#include <cstdint>

void show(int number);
void show(long number);
void show(unsigned long number);

void showSize(std::uint64_t size) {
    show(size);
}
