#include "Base/StableHash.h"

#include <array>
#include <cstdint>
#include <cstdio>

namespace quorvel {

std::string stableHash(std::string_view bytes) {
    std::uint64_t hash = 14695981039346656037U; // FNV-1a
    for (const char byte : bytes) {
        hash = (hash ^ static_cast<unsigned char>(byte)) * 1099511628211U;
    }
    std::array<char, 17> digits{};
    (void)std::snprintf(digits.data(), digits.size(), "%016llx",
                        static_cast<unsigned long long>(hash));
    return digits.data();
}

} // namespace quorvel
