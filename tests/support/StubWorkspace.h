#pragma once

#include "Platform/desktop/Workspace.h"

#include <optional>
#include <string>
#include <vector>

namespace quorvel::testing {

/// A workspace that opens nothing: it records the calls and answers what the test chose.
class StubWorkspace final : public Workspace {
public:
    void openApplication(const std::filesystem::path& bundle, bool activates,
                         Completion completion) override;
    void reveal(const std::filesystem::path& item) override;
    RunningApplications runningApplications() override;
    [[nodiscard]] OperatingSystemVersion operatingSystemVersion() const override { return version; }

    /// Makes `running` one application for each of these identifiers.
    void setRunning(const std::vector<std::string>& bundleIds);

    std::vector<RunningApplication> running{};
    std::optional<PlatformError> openError{};
    bool throwsOpenError = false;   ///< `openError` is thrown instead of passed to the completion
    bool completesOnThread = false; ///< the completion is called on a thread of its own
    std::optional<PlatformError> revealError{};
    OperatingSystemVersion version{14, 5};

    std::vector<std::filesystem::path> opened{};
    std::vector<std::filesystem::path> revealed{};
    bool activated = false;
    int snapshots = 0;
};

} // namespace quorvel::testing
