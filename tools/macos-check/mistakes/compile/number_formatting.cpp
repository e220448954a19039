// expected: 'to_chars' is unavailable
#include <charconv>

void write(char* buffer, double number) {
    std::to_chars(buffer, buffer + 40, number);
}
