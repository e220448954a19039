// expected: undefined symbol: __ZN7QString
#include <QString>

int length(const char* text) {
    return static_cast<int>(QString::fromUtf8(text).size());
}
