#pragma once

#include "Platform/processes/Process.h"
#include "tests/support/TemporaryHome.h"

#include <optional>

namespace quorvel::testing {

/// A session bus of our own, which this process and what it starts find, until the end. A process
/// keeps the first bus that it met, so there is one for all tests of a program.
class PrivateBus {
public:
    /// Whether the daemon is installed.
    [[nodiscard]] static bool isAvailable();

    /// Throws when the bus does not come up.
    PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;
    ~PrivateBus();

private:
    TemporaryFolder folder_;
    std::optional<Process> daemon_;
    std::optional<ScopedEnvironment> address_;
};

} // namespace quorvel::testing
