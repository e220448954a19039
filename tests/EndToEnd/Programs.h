#pragma once

#include "Platform/processes/Process.h"
#include "tests/support/TemporaryHome.h"

#include <nlohmann/json_fwd.hpp>

#include <functional>
#include <string>
#include <vector>

namespace quorvel::testing {

/// The real `quorvelctl` in a throw-away home, the only home that its processes know.
class QuorvelctlInAHome {
public:
    QuorvelctlInAHome();
    /// Ends every clone that still runs.
    ~QuorvelctlInAHome();
    QuorvelctlInAHome(const QuorvelctlInAHome&) = delete;
    QuorvelctlInAHome& operator=(const QuorvelctlInAHome&) = delete;

    /// Runs it and returns what it printed. Throws if the exit status is not 0.
    std::string run(const std::vector<std::string>& arguments);
    /// Runs it and returns what it printed, which ends with its exit status where that is not 0.
    std::string outcomeOf(const std::vector<std::string>& arguments);
    /// Runs it with `--json` and returns what it printed. Throws if the exit status is not 0.
    nlohmann::json json(std::vector<std::string> arguments);

    /// Returns whether `list` shows the clone of that name as running.
    bool isListedAsRunning(const std::string& name);

    /// Returns the path of the clone's data folder.
    [[nodiscard]] std::filesystem::path data(const std::string& name) const;
    /// Returns the content of the clone's log.
    [[nodiscard]] std::string log(const std::string& name) const;

    TemporaryHome home{};
    Environment environment{};
    std::filesystem::path program = QUORVEL_CTL; ///< the one that was built, or another
};

/// Returns the processes whose command line satisfies `matches` (arguments separated by NUL).
[[nodiscard]] std::vector<pid_t>
processesWhose(const std::function<bool(const std::string&)>& matches);

/// Returns the process number of the runner inside that wrapper; `std::nullopt` if it does not run.
[[nodiscard]] std::optional<pid_t> runnerOf(const std::filesystem::path& wrapper);

} // namespace quorvel::testing
