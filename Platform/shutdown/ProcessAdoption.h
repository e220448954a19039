#pragma once

#include <sys/types.h>
#include <vector>

/// Processes that detach themselves from the one that started them.
namespace quorvel {

/// From now on, a descendant whose parent ends becomes a child of this process, instead of leaving
/// it. Does nothing on macOS, which has no such thing.
void adoptOrphans() noexcept;

/// Returns the children of this process that still run, without those that have left the clone
/// (`hasLeftClone`). Returns none on macOS.
[[nodiscard]] std::vector<pid_t> runningChildren();

} // namespace quorvel
