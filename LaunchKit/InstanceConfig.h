#pragma once

#include "Base/Error.h"
#include "LaunchKit/CloneOptions.h"

#include <cstddef>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel {

/// A configuration that can't be read or written as JSON.
class ConfigError : public Error {
public:
    using Error::Error;
};

/// Everything that makes a clone what it is: the contents of its `instance.json`.
struct InstanceConfig : CloneTarget, CloneOptions {
    std::string displayName{};
    std::string bundleId{};      ///< the wrapper's own
    std::string targetAppPath{}; ///< the application bundle of an `app` clone, else empty
    std::string instanceHome{};  ///< the clone's data folder; may begin with "~"
    std::vector<std::string> extraArgs{};

    /// The largest file that is read, in bytes.
    static constexpr std::size_t maximumFileSize = std::size_t{4} << 20U;

    /// Returns the configuration that `json` encodes; the text may begin with a byte-order mark.
    /// Unknown keys are ignored, with any values, and of a key that appears several times the first
    /// counts. Throws a `ConfigError` that lists every fault: malformed JSON, missing required
    /// keys, values of the wrong type, unknown enumeration strings.
    [[nodiscard]] static InstanceConfig fromJson(std::string json);

    /// Decodes `json`, which is overwritten, into a default-constructed `config`, for callers that
    /// read many. Throws `ConfigError`; `config` is unspecified then.
    static void decode(std::string& json, InstanceConfig& config);

    /// Reads a file. Returns `std::nullopt` if it can't be read or decoded, is too large or not a
    /// regular file.
    [[nodiscard]] static std::optional<InstanceConfig> read(const std::string& file);

    /// Returns the JSON form: indented, keys sorted, "/" escaped, absent optional fields left out.
    /// Throws `ConfigError` if a text is not valid UTF-8.
    [[nodiscard]] std::string json() const;

    /// Returns `targetAppPath` as it is, without expanding "~".
    [[nodiscard]] std::filesystem::path targetAppURL() const { return targetAppPath; }
    /// Returns `instanceHome` with a leading "~" expanded.
    [[nodiscard]] std::string resolvedHome() const;
    /// Returns `extraArgs` with every "{{instanceHome}}" replaced by `resolvedHome()`.
    [[nodiscard]] std::vector<std::string> resolvedArgs() const;
    /// Returns `environment` with the same replacement in its values; keys stay as they are.
    [[nodiscard]] std::map<std::string, std::string> resolvedEnvironment() const;
    /// Returns `commandArgs` with the same replacement.
    [[nodiscard]] std::vector<std::string> resolvedCommandArgs() const;
};

/// Returns `text` with every placeholder replaced by `home`, left to right.
[[nodiscard]] std::string expandingInstanceHome(std::string_view text, std::string_view home);

} // namespace quorvel
