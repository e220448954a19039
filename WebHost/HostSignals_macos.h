#pragma once

#include <functional>

namespace quorvel {

/// Has `asked` called on the main queue for each SIGTERM, SIGINT and SIGHUP from now on.
void onRequestToEnd(std::function<void()> asked);

} // namespace quorvel
