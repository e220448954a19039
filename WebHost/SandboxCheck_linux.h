#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quorvel {

/// Returns the mode of the filter for system calls in the text of /proc/PID/status: 0 for none, 2
/// for a filter; std::nullopt if it is not in there.
[[nodiscard]] std::optional<int> seccompModeIn(std::string_view status);

/// Returns why a page's process, a descendant of this one, runs without its sandbox, as a sentence;
/// empty if all run in theirs.
[[nodiscard]] std::string sandboxProblem();

} // namespace quorvel
