#pragma once

#include "Base/Error.h"
#include "LaunchKit/Strategy.h"
#include "Platform/desktop/Workspace.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel {

/// How an app prevents a second running copy.
enum class SingletonTier {
    none,         ///< two copies run side by side
    lockFile,     ///< the second keeps running but never registers as an application
    machPort,     ///< the second passes its request to the first and exits
    lsProhibited, ///< the bundle declares it
    unknown,      ///< the test was inconclusive
};

/// How far a profile is trusted.
enum class Confidence { verified, community, autoDetected, broken };

template<>
inline constexpr auto enumNames<SingletonTier> = namesOfAllCases<SingletonTier>({
    {SingletonTier::none, "none"},
    {SingletonTier::lockFile, "lockFile"},
    {SingletonTier::machPort, "machPort"},
    {SingletonTier::lsProhibited, "lsProhibited"},
    {SingletonTier::unknown, "unknown"},
});

template<>
inline constexpr auto enumNames<Confidence> = namesOfAllCases<Confidence>({
    {Confidence::verified, "verified"},
    {Confidence::community, "community"},
    {Confidence::autoDetected, "autoDetected"},
    {Confidence::broken, "broken"},
});

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
    bool prefsLeak = false;                ///< the app writes preferences outside the clone's home
    std::vector<std::string> extraArgs{};  ///< may contain "{{instanceHome}}"
    std::vector<std::string> verifiedOn{}; ///< operating-system signatures
    Confidence confidence = Confidence::autoDetected;
    /// The variables that a clone needs to run beside the original; absent if it needs none.
    std::optional<std::map<std::string, std::string>> environment{};

    /// Where the app keeps its data, relative to the home, such as ".config/app"; absent if that is
    /// not known.
    std::optional<std::vector<std::string>> dataFolders{};

    bool operator==(const AppProfile&) const = default;

    /// Returns the profile as it applies on the system with this signature: confidence not
    /// confirmed on that system is lowered to `autoDetected`.
    [[nodiscard]] AppProfile reconciled(const std::string& currentSignature) const;

    /// Returns the JSON form: indented, keys sorted, "/" escaped. Throws `ProfileError` if a text
    /// is not valid UTF-8.
    [[nodiscard]] std::string encodedJSON() const;

    /// Returns the profile whose JSON form this is. Unknown keys are ignored, with any
    /// values, and of a key that appears several times the first counts. Throws a `ProfileError`
    /// that lists every fault: malformed JSON, missing keys, values of the wrong type, unknown
    /// enumeration strings.
    [[nodiscard]] static AppProfile fromJson(std::string_view json);
};

/// Returns the signature of a system, such as "macOS 14.5", or on Linux that of the distribution.
[[nodiscard]] std::string operatingSystemSignature(const OperatingSystemVersion& version);

} // namespace quorvel
