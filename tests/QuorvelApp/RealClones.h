#pragma once

#include "LaunchKit/InstanceRecord.h"
#include "Platform/processes/Process.h"

#include <filesystem>
#include <string>

/// Clones as Quorvel makes them, in the test's home.
namespace quorvel::testing {

/// Makes a clone of a web site.
[[nodiscard]] InstanceRecord makeWebClone(const std::string& name);

/// Makes a clone look like one of an older Quorvel.
void ageRunner(const InstanceRecord& clone);

/// Returns whether the clone has the current runner.
[[nodiscard]] bool hasNewRunner(const InstanceRecord& clone);

/// A clone "Work" of a shell script, which runs until the object is destroyed or it is stopped.
class RunningClone {
public:
    /// The clone goes on once `script` has run, such as a trap.
    explicit RunningClone(const std::string& script);
    RunningClone(const RunningClone&) = delete;
    RunningClone& operator=(const RunningClone&) = delete;
    ~RunningClone();

    [[nodiscard]] const InstanceRecord& clone() const { return clone_; }
    [[nodiscard]] bool isRunning() { return runner_.isRunning(); }

private:
    std::filesystem::path ready_;
    InstanceRecord clone_;
    Process runner_;
};

} // namespace quorvel::testing
