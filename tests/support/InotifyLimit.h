#pragma once

#include <functional>

namespace quorvel::testing {

enum class InotifyLimit { watches, instances };

/// Makes this process a user of its own namespace and limits how much of inotify that user may
/// have. Returns false if the system refuses. Only for a child process, since it cannot be undone.
[[nodiscard]] bool limitInotify(InotifyLimit limit, int count);

/// Runs `body` in a child process and returns what it returned.
[[nodiscard]] bool holdsInChild(const std::function<bool()>& body);

} // namespace quorvel::testing
