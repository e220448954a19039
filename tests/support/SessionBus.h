#pragma once

#include "Platform/processes/Process.h"
#include "tests/support/TemporaryHome.h"

#include <optional>

namespace quorvel::testing {

/// A private session bus for this process and its children while the object lives. A process keeps
/// the first bus that it connected to, so all tests of a program share one.
class SessionBus {
public:
    /// What the bus starts when it is asked for a service that isn't on it.
    enum class Services {
        Installed, ///< what happens to be installed for it
        Chosen     ///< Xfce's settings, without which its window manager does not start
    };

    /// Returns whether the daemon is installed.
    [[nodiscard]] static bool isAvailable();

    /// Returns the one bus of a test program, which starts only `Services::Chosen` and lives as
    /// long as the program.
    [[nodiscard]] static SessionBus& shared();

    /// Throws `std::runtime_error` if the bus does not start.
    explicit SessionBus(Services services = Services::Installed);
    SessionBus(const SessionBus&) = delete;
    SessionBus& operator=(const SessionBus&) = delete;
    ~SessionBus();

private:
    TemporaryFolder folder_;
    std::optional<Process> daemon_;
    std::optional<ScopedEnvironment> address_;
};

} // namespace quorvel::testing
