#pragma once

#include "Base/Error.h"
#include "LaunchKit/Strategy.h"
#include "Platform/desktop/Workspace.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel {

/// How an app prevents a second running copy.
enum class SingletonTier {
    none,         ///< two copies run side by side
    lockFile,     ///< the second lives on but never comes up as an application
    machPort,     ///< the second hands over to the first and quits
    lsProhibited, ///< the bundle declares it
    unknown,      ///< the test was inconclusive
};

/// How far a profile is trusted.
enum class Confidence { verified, community, autoDetected, broken };

/// The case's name.
[[nodiscard]] std::string_view rawString(SingletonTier tier);
[[nodiscard]] std::string_view rawString(Confidence confidence);

/// Nothing for any other text.
[[nodiscard]] std::optional<SingletonTier> singletonTierFromRawString(std::string_view text);
[[nodiscard]] std::optional<Confidence> confidenceFromRawString(std::string_view text);

/// A profile that can't be read or written as JSON.
class ProfileError : public Error {
public:
    using Error::Error;
};

/// What is known about one target application.
struct AppProfile {
    std::string bundleId{};
    std::string displayName{};
    bool sandboxed = false;
    Strategy strategy = Strategy::homeOverride; ///< the recommended one
    SingletonTier singleton = SingletonTier::unknown;
    bool prefsLeak = false;                ///< it writes preferences outside the clone's home
    std::vector<std::string> extraArgs{};  ///< may hold "{{instanceHome}}"
    std::vector<std::string> verifiedOn{}; ///< operating-system signatures
    Confidence confidence = Confidence::autoDetected;

    bool operator==(const AppProfile&) const = default;

    /// The profile as it applies on the system with this signature: trust that was not confirmed
    /// there sinks to `autoDetected`.
    [[nodiscard]] AppProfile reconciled(const std::string& currentSignature) const;

    /// Pretty-printed, keys sorted, "/" escaped. Throws `ProfileError` when a text is not UTF-8.
    [[nodiscard]] std::string encodedJSON() const;

    /// Reads the JSON form. Throws `ProfileError` for malformed JSON, a missing key, a value of the
    /// wrong type or an unknown enumeration string.
    [[nodiscard]] static AppProfile fromJson(std::string_view json);
};

/// The signature of a system, such as "macOS 14.5", or on Linux that of the distribution.
[[nodiscard]] std::string operatingSystemSignature(const OperatingSystemVersion& version);

} // namespace quorvel
