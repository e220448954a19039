#include "Platform/files/DatabaseCount.h"

namespace quorvel {

std::optional<std::size_t> countInDatabase(const std::filesystem::path& /*database*/,
                                           const std::filesystem::path& /*scratch*/,
                                           const char* /*query*/) {
    return std::nullopt;
}

} // namespace quorvel
