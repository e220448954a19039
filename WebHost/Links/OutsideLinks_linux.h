#pragma once

#include "Platform/processes/Environment.h"

#include <filesystem>
#include <optional>
#include <string>

namespace quorvel {

/// Opens addresses outside of a web clone: in the session that it was started in.
class OutsideLinks {
public:
    /// Records the session for the program that opens links, which is looked for as `session`, its
    /// environment, says. `host` is the clone's own environment, and `links` its setting
    /// (`CloneOptions::links`). `fileMask` is the session's mask for new files, for what is opened.
    OutsideLinks(std::string home, const std::optional<std::string>& links,
                 const Environment& session, const Environment& host, mode_t fileMask);

    /// Opens a web or mail address with the user's default program, or as the clone's setting says;
    /// any other with `xdg-open`. Returns false if nothing can be started for it.
    [[nodiscard]] bool open(const std::string& address) const;

private:
    std::optional<std::filesystem::path> door_;
    Environment doorEnvironment_;
    Environment outside_;
    mode_t fileMask_;
};

} // namespace quorvel
