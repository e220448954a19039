#pragma once

#include "Platform/Process.h"

#include <chrono>
#include <vector>

namespace quorvel {

/// Waits up to `grace` for processes that were asked to end, then ends those that still run by
/// force. None of them is left, not even as a zombie.
void waitForEnd(std::vector<Process> processes, std::chrono::milliseconds grace);

/// The same for one process, without making the caller wait.
void endInBackground(Process process, std::chrono::milliseconds grace);

} // namespace quorvel
