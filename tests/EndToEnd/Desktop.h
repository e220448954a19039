#pragma once

#include "tests/support/SessionBus.h"
#include "tests/support/XServer.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quorvel::testing {

/// An invisible desktop: an X server with a window manager, and a session bus on which programs
/// offer themselves to assistive technology. This process and its children use it while the object
/// lives.
class Desktop {
public:
    /// Returns the programs it needs that are not installed.
    [[nodiscard]] static std::vector<std::string> missingPrograms();

    /// Throws if something does not come up, and leaves nothing running then.
    Desktop();
    Desktop(const Desktop&) = delete;
    Desktop& operator=(const Desktop&) = delete;
    ~Desktop() = default;

private:
    void setVariable(const std::string& name, const std::string& value);

    TemporaryFolder folder_;
    std::vector<std::unique_ptr<ScopedEnvironment>> variables_{};
    // In the order of their start; they end the other way round.
    std::optional<SessionBus> bus_{};
    std::optional<XServer> screen_{};
};

} // namespace quorvel::testing
