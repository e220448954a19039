#include "Platform/entries/InstalledApplications.h"

namespace quorvel {

// Applications are bundles here.
std::vector<InstalledApplication> installedApplications(const std::vector<std::filesystem::path>&) {
    return {};
}

} // namespace quorvel
