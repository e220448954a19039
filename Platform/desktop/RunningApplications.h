#pragma once

#include <cstddef>
#include <filesystem>
#include <map>
#include <string>
#include <sys/types.h>
#include <vector>

namespace quorvel {

/// A running application from a bundle, represented by its topmost process.
struct RunningApplication {
    std::string bundleId{};
    std::filesystem::path bundleURL{}; ///< the bundle folder, links resolved
    pid_t pid = 0;
};

/// A snapshot of the running applications, which answers any number of queries.
class RunningApplications {
public:
    RunningApplications() = default;
    explicit RunningApplications(std::vector<RunningApplication> applications);

    /// Returns all of them, ordered by process number.
    [[nodiscard]] const std::vector<RunningApplication>& all() const { return all_; }

    /// Returns those with exactly this identifier, ordered by process number.
    [[nodiscard]] std::vector<RunningApplication>
    withBundleIdentifier(const std::string& bundleId) const;

    /// Returns whether an application with exactly this identifier is running.
    [[nodiscard]] bool contains(const std::string& bundleId) const;

private:
    std::vector<RunningApplication> all_{};
    std::multimap<std::string, std::size_t> byIdentifier_{};
};

} // namespace quorvel
