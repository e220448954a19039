#pragma once

#include "Base/PathText.h"
#include "Platform/homes/FolderVariable.h"

#include <array>
#include <string>

namespace quorvel {

/// A folder in which programs keep what is the user's, as desktops define it.
struct UserDataFolder {
    const char* variable;
    const char* usual; ///< relative to the home

    /// Returns where it is in a session.
    [[nodiscard]] std::string in(const Environment& session, const std::string& home) const {
        return folderVariable(session, variable, joinAsText(home, usual));
    }
};

/// Settings, data, state and caches.
inline constexpr std::array<UserDataFolder, 4> userDataFolders{{
    {"XDG_CONFIG_HOME", ".config"},
    {"XDG_DATA_HOME", ".local/share"},
    {"XDG_STATE_HOME", ".local/state"},
    {"XDG_CACHE_HOME", ".cache"},
}};

} // namespace quorvel
