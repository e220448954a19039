#pragma once

#include <optional>
#include <string>

namespace quorvel {

/// Opens addresses outside of a web clone.
class OutsideOpener {
public:
    /// `links` is the clone's setting (`CloneOptions::links`).
    explicit OutsideOpener(const std::optional<std::string>& links);

    /// Opens a web or mail address as the setting says, and any other with the program that is the
    /// default for it. Returns false if none is.
    [[nodiscard]] bool open(const std::string& address) const;

private:
    std::string wrapper_{}; ///< of the clone that opens links; empty for the default programs
};

} // namespace quorvel
