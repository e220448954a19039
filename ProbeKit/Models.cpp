#include "ProbeKit/Models.h"

#include "LaunchKit/RawStrings.h"

namespace quorvel {
namespace {

constexpr RawStrings<LeakBucket, 5> bucketNames{{
    {LeakBucket::captured, "captured"},
    {LeakBucket::dataLeak, "dataLeak"},
    {LeakBucket::prefsLeak, "prefsLeak"},
    {LeakBucket::containerLeak, "containerLeak"},
    {LeakBucket::irrelevant, "irrelevant"},
}};

} // namespace

std::string_view rawString(LeakBucket bucket) {
    return rawStringIn(bucketNames, bucket);
}

std::optional<LeakBucket> leakBucketFromRawString(std::string_view text) {
    return caseIn(bucketNames, text);
}

std::size_t ProbeResult::count(LeakBucket bucket) const {
    const auto paths = buckets.find(bucket);
    return paths == buckets.end() ? 0 : paths->second.size();
}

} // namespace quorvel
