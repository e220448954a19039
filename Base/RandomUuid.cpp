#include "Base/RandomUuid.h"

#include <random>
#include <string_view>

namespace quorvel {

std::string randomUuid() {
    constexpr std::string_view digits = "0123456789ABCDEF";
    // "4" is the version of random UUIDs; "V" is replaced by a digit whose first two bits are 10.
    std::string uuid = "xxxxxxxx-xxxx-4xxx-Vxxx-xxxxxxxxxxxx";
    std::random_device source;
    for (char& character : uuid) {
        if (character == 'x') {
            character = digits[source() % 16];
        } else if (character == 'V') {
            character = digits[8 + source() % 4];
        }
    }
    return uuid;
}

} // namespace quorvel
