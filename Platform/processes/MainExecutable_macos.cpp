#include "Platform/processes/MainExecutable.h"

#include <cstdint>
#include <mach-o/dyld.h>
#include <string>

namespace quorvel {

std::filesystem::path mainExecutable() {
    std::uint32_t size = 0;
    _NSGetExecutablePath(nullptr, &size); // sets the size
    std::string text(size, '\0');
    if (_NSGetExecutablePath(text.data(), &size) != 0) {
        return {};
    }
    std::error_code code;
    std::filesystem::path resolved = std::filesystem::canonical(text.c_str(), code);
    return code ? std::filesystem::path() : resolved;
}

} // namespace quorvel
