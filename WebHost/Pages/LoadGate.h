#pragma once

#include "WebHost/Questions/HostQuestion.h"

#include <functional>
#include <optional>
#include <string>

namespace quorvel {

/// Keeps addresses from being loaded while the settings can't be used: a user who set a proxy there
/// may not want to be seen without it. The user decides.
class LoadGate {
public:
    static constexpr const char* unreadableFile =
        "The file of the Site Settings can’t be used. A proxy that it names is not in use.";

    struct Actions {
        std::function<void(const std::string& address)> load{};
        std::function<void(HostQuestion)> ask{};
        std::function<void()> showSettings{};
    };

    /// `reason` is what the user is told.
    LoadGate(bool isClosed, Actions actions, std::string reason = unreadableFile)
        : isClosed_(isClosed),
          actions_(std::move(actions)),
          reason_(std::move(reason)) {}

    [[nodiscard]] bool isClosed() const { return isClosed_; }
    /// Loads the address, or asks the user and keeps it in place of an earlier one.
    void load(const std::string& address);
    /// Loads the address that waits. Later ones are loaded at once.
    void open();

private:
    void answered(std::optional<bool> isMeant);

    bool isClosed_;
    Actions actions_;
    std::string reason_;
    bool isAsked_ = false;
    std::string address_{}; ///< the one that waits
};

} // namespace quorvel
