#include "Platform/desktop/Workspace.h"

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

bool isAppBundleName(std::string_view name) {
    constexpr std::string_view extension = ".app";
    // A name that begins with its only dot has no extension.
    return name.size() > extension.size() && name.ends_with(extension);
}

std::string bundleFallbackName(const std::filesystem::path& bundle) {
    std::string_view name = bundle.native();
    while (name.size() > 1 && name.ends_with('/')) {
        name.remove_suffix(1);
    }
    name.remove_prefix(name.rfind('/') + 1);
    const std::size_t dot = name.rfind('.');
    const bool hasExtension = dot != std::string_view::npos && dot != 0 && name != "..";
    return std::string(name.substr(0, hasExtension ? dot : std::string_view::npos));
}

} // namespace quorvel
