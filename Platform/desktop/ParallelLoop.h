#pragma once

#include <cstddef>
#include <functional>

namespace quorvel {

/// Calls `work`, which must not throw, for every number below `count`, from as many threads as
/// there are processors, and returns when all is done. If no thread can be started, the calling
/// one does it all.
void forEachIndex(std::size_t count, const std::function<void(std::size_t)>& work);

} // namespace quorvel
