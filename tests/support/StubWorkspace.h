#pragma once

#include "Platform/desktop/Workspace.h"

#include <optional>
#include <vector>

namespace quorvel::testing {

/// A workspace that opens nothing: it notes what it was asked, and answers what it was told.
class StubWorkspace final : public Workspace {
public:
    void openApplication(const std::filesystem::path& bundle, bool activates,
                         Completion completion) override {
        opened.push_back(bundle);
        activated = activates;
        completion(openError);
    }
    void reveal(const std::filesystem::path& item) override { revealed.push_back(item); }
    RunningApplications runningApplications() override {
        ++snapshots;
        return RunningApplications(running);
    }
    [[nodiscard]] OperatingSystemVersion operatingSystemVersion() const override { return version; }

    std::vector<RunningApplication> running{};
    std::optional<PlatformError> openError{};
    OperatingSystemVersion version{14, 5};

    std::vector<std::filesystem::path> opened{};
    std::vector<std::filesystem::path> revealed{};
    bool activated = false;
    int snapshots = 0;
};

} // namespace quorvel::testing
