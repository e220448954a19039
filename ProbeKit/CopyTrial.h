#pragma once

#include "LaunchKit/AppProfile.h"
#include "Platform/shutdown/ProcessActivity.h"
#include "Platform/shutdown/ProcessShutdown.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace quorvel {

struct AppBundle;

/// Starts two copies of a desktop entry's or an AppImage's application, and finds out from their
/// processes whether they run side by side.
class CopyTrial {
public:
    using Seconds = std::chrono::duration<double>;
    using Variables = std::map<std::string, std::string>;

    struct Steps {
        /// Launches a copy with that home and these additional variables.
        std::function<IsolatedProcess(const std::string& home, const Variables&)> launch{};
        std::function<void(Seconds)> wait{};
        std::string homeA{};
        std::string homeB{};
        Seconds settleA{0};
        Seconds settleB{0};
        Seconds patience{0}; ///< how much longer to wait for a copy that is still starting
        std::function<ProcessActivity(pid_t)> activity = activityOf;
    };

    /// What `run` launches is added to `copies`, also if it throws.
    CopyTrial(const AppBundle& app, Steps steps, std::vector<IsolatedProcess>& copies);

    /// Throws what the steps throw.
    void run();

    /// How the second copy reacted to the first, with the variables of the user's session.
    [[nodiscard]] SingletonTier singleton() const { return singleton_; }
    /// The variables with which two copies run side by side that don't without; empty if there are
    /// none.
    [[nodiscard]] const Variables& environment() const { return environment_; }

private:
    enum class State {
        up,
        waitsForLock,
        handedOver, ///< it has ended, and said that all is well
        failed,
    };

    [[nodiscard]] std::size_t start(const std::string& home, const Variables& variables,
                                    Seconds settle);
    void waitWhileStarting(std::size_t copy);
    [[nodiscard]] State stateOf(std::size_t copy);
    [[nodiscard]] bool isUp(std::size_t copy) { return stateOf(copy) == State::up; }
    [[nodiscard]] SingletonTier tier(std::size_t first, std::size_t second);

    const AppBundle& app_;
    Steps steps_;
    std::vector<IsolatedProcess>& copies_;
    SingletonTier singleton_ = SingletonTier::unknown;
    Variables environment_{};
};

/// Returns the tier for a second copy that is running or not, if that many copies have come up.
[[nodiscard]] SingletonTier singletonTier(bool secondIsRunning, std::size_t running);

} // namespace quorvel
