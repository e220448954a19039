#pragma once

#include "LaunchKit/InstanceConfig.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace quorvel {

/// A clone on disk: its wrapper bundle and the configuration inside. Records are equal if their
/// bundles are.
struct InstanceRecord {
    std::filesystem::path bundleURL{};
    InstanceConfig config{};

    [[nodiscard]] std::string id() const { return bundleURL.string(); }
    /// Returns the wrapper's icon; `std::nullopt` if it has none.
    [[nodiscard]] std::optional<std::filesystem::path> iconURL() const;

    bool operator==(const InstanceRecord& other) const { return bundleURL == other.bundleURL; }
};

} // namespace quorvel

template<>
struct std::hash<quorvel::InstanceRecord> {
    std::size_t operator()(const quorvel::InstanceRecord& record) const noexcept {
        return std::filesystem::hash_value(record.bundleURL);
    }
};
