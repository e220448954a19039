#include "Platform/watching/DataPlaces.h"

namespace quorvel {

std::vector<DataPlace> dataPlaces(const std::string& /*home*/, const Environment& /*session*/) {
    return {};
}

std::optional<Settings> sharedSettings(const DataPlace& /*place*/) {
    return std::nullopt;
}

} // namespace quorvel
