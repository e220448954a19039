#pragma once

#include "LaunchKit/AppProfile.h"
#include "LaunchKit/Strategy.h"

#include <array>
#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace quorvel {

/// One recorded change of a file or folder. Several of the three changes may be true at once.
struct WriteEvent {
    std::string path{};
    bool isDir = false;
    bool created = false;
    bool modified = false;
    bool renamed = false;

    bool operator==(const WriteEvent&) const = default;
};

/// Where a recorded write went. For an application that is not a bundle, `DataPlace` says what
/// takes the place of the Library's folders.
enum class LeakBucket {
    captured,      ///< inside the fake home: isolation worked
    dataLeak,      ///< the real Application Support, under a name that mentions the app
    prefsLeak,     ///< the real Preferences, under a name that mentions the app
    containerLeak, ///< the app's sandbox container in the real Library
    irrelevant,    ///< anything else
};

template<>
inline constexpr auto enumNames<LeakBucket> = namesOfAllCases<LeakBucket>({
    {LeakBucket::captured, "captured"},
    {LeakBucket::dataLeak, "dataLeak"},
    {LeakBucket::prefsLeak, "prefsLeak"},
    {LeakBucket::containerLeak, "containerLeak"},
    {LeakBucket::irrelevant, "irrelevant"},
});

using LeakBuckets = std::map<LeakBucket, std::vector<std::string>>;

/// The result of probing an app.
struct ProbeResult {
    LeakBuckets buckets{}; ///< every recorded path, in the order of events; no key without a path
    SingletonTier singleton = SingletonTier::unknown;
    /// The variables with which a second copy runs beside the first, if it doesn't without.
    std::map<std::string, std::string> environment{};
    Strategy recommendedStrategy = Strategy::unsupported;
    /// False if writes may have been missed. Does not affect the recommendation.
    bool complete = true;
    /// The user has the application open, and what that writes looks like leaks.
    bool isInUse = false;

    /// Returns the number of paths in a bucket.
    [[nodiscard]] std::size_t count(LeakBucket bucket) const;
    [[nodiscard]] bool prefsLeak() const { return count(LeakBucket::prefsLeak) > 0; }

    bool operator==(const ProbeResult&) const = default;
};

} // namespace quorvel
