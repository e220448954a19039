#include "Platform/entries/DefaultApplication.h"

namespace quorvel {

bool linksStayInsideClones() noexcept {
    return false;
}

std::optional<InstalledApplication> defaultApplication(const std::string& /*mimeType*/) {
    return std::nullopt;
}

} // namespace quorvel
