// expected: no member named 'format' in namespace 'std'
#include <format>
#include <string>

std::string text(int number) {
    return std::format("{}", number);
}
