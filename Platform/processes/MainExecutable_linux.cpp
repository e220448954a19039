#include "Platform/processes/MainExecutable.h"

namespace quorvel {

std::filesystem::path mainExecutable() {
    std::error_code ignored;
    return std::filesystem::read_symlink("/proc/self/exe", ignored);
}

} // namespace quorvel
