#pragma once

#include "WebHost/HostQuestion.h"

#include <functional>
#include <optional>
#include <string>

namespace quorvel {

/// Keeps addresses from being loaded while the file of the settings can't be used: whoever set a
/// proxy there may not want to be seen without it. The user decides.
class LoadGate {
public:
    struct Actions {
        std::function<void(const std::string& address)> load{};
        std::function<void(HostQuestion)> ask{};
        std::function<void()> showSettings{};
    };

    LoadGate(bool isClosed, Actions actions) : isClosed_(isClosed), actions_(std::move(actions)) {}

    [[nodiscard]] bool isClosed() const { return isClosed_; }
    /// Loads the address, or asks the user and keeps it in place of an earlier one.
    void load(const std::string& address);
    /// Loads the address that waits. Later ones are loaded at once.
    void open();

private:
    void answered(std::optional<bool> isMeant);

    bool isClosed_;
    Actions actions_;
    bool isAsked_ = false;
    std::string address_{}; ///< the one that waits
};

} // namespace quorvel
