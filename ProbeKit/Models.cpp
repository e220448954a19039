#include "ProbeKit/Models.h"

namespace quorvel {

std::size_t ProbeResult::count(LeakBucket bucket) const {
    const auto paths = buckets.find(bucket);
    return paths == buckets.end() ? 0 : paths->second.size();
}

} // namespace quorvel
