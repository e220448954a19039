#pragma once

#include "Platform/Process.h"
#include "tests/support/PrivateBus.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quorvel::testing {

/// A desktop of our own that nobody sees: an X server with a window manager, and a session bus on
/// which programs offer themselves to assistive technology. This process and what it starts find
/// it, until the end.
class Desktop {
public:
    /// The programs it needs that are not installed.
    [[nodiscard]] static std::vector<std::string> missingPrograms();

    /// Throws when something does not come up.
    Desktop();
    Desktop(const Desktop&) = delete;
    Desktop& operator=(const Desktop&) = delete;
    ~Desktop();

private:
    void setVariable(const std::string& name, const std::string& value);

    TemporaryFolder folder_;
    std::vector<std::unique_ptr<ScopedEnvironment>> variables_{};
    std::optional<Process> server_{};
    std::optional<PrivateBus> bus_{};
    std::optional<Process> windowManager_{};
};

} // namespace quorvel::testing
