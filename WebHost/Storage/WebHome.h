#pragma once

#include "Platform/processes/Environment.h"

#include <map>
#include <string>

/// The data folder of a web clone.
namespace quorvel {

/// Where the host keeps what is its own below a clone's home. The cache is there as well, since web
/// applications keep data in it that they can't do without.
struct WebHome {
    std::string home;
    std::string folder = home + "/.local/share/quorvel/web"; ///< contains all that follow
    std::string data = folder + "/data";
    std::string cache = folder + "/cache";
    std::string permissions = folder + "/permissions.json";
    std::string settings = folder + "/settings.json";
    std::string certificates = folder + "/certificates.json";
    std::string windowState = folder + "/window.json";

    /// Makes the home if it is missing, closed to other users. One that is there keeps its
    /// permissions. Throws `PlatformError`.
    void createHome() const;
    /// Makes the home and the folders, which are closed to other users. Throws `PlatformError`.
    void create() const;
};

/// Returns the environment of a web clone's host, which its web processes inherit: `session`'s with
/// all data folders below `home`, and of the rest only what a window needs; then `own`, the
/// clone's. Makes the folders that the variables name.
[[nodiscard]] Environment webEnvironment(const std::string& home, const Environment& session,
                                         const std::map<std::string, std::string>& own);

} // namespace quorvel
