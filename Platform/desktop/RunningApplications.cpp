#include "Platform/desktop/RunningApplications.h"

#include <algorithm>

namespace quorvel {

RunningApplications::RunningApplications(std::vector<RunningApplication> applications)
    : all_(std::move(applications)) {
    std::sort(all_.begin(), all_.end(), [](const auto& a, const auto& b) { return a.pid < b.pid; });
    for (std::size_t index = 0; index < all_.size(); ++index) {
        byIdentifier_.emplace(all_[index].bundleId, index);
    }
}

std::vector<RunningApplication>
RunningApplications::withBundleIdentifier(const std::string& bundleId) const {
    std::vector<RunningApplication> found;
    const auto [first, last] = byIdentifier_.equal_range(bundleId);
    for (auto entry = first; entry != last; ++entry) {
        found.push_back(all_[entry->second]);
    }
    return found;
}

bool RunningApplications::contains(const std::string& bundleId) const {
    return byIdentifier_.contains(bundleId);
}

} // namespace quorvel
