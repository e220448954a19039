#pragma once

#include "Platform/processes/Environment.h"

#include <string>

namespace quorvel {

/// What an application's environment depends on besides its home.
struct IsolationOptions {
    /// Downloads, Documents and Desktop are the user's own.
    bool sharesUserFolders = true;
    /// The application runs in a Java virtual machine, which doesn't take its home from `HOME`.
    bool usesJava = false;
    /// The application is started by Flatpak, which looks for what the user installed below `HOME`.
    bool usesFlatpak = false;
};

/// Returns the variables, besides `HOME`, that keep the data of an application below `home`
/// (absolute and existing) where the session's environment would lead it elsewhere. They replace
/// those of the same name in `session`, the environment that the application would have otherwise.
/// Creates what they point to, and updates it at each call; a variable whose folder can't be
/// created is left out. Empty on macOS, where the home alone decides. Never throws.
[[nodiscard]] Environment isolatedEnvironment(const std::string& home, const Environment& session,
                                              const IsolationOptions& options = {});

/// Removes the temporary folder that `isolatedEnvironment` made for `home` outside of it, with
/// everything in it, unless something is mounted there. To be called once nothing runs in `home`
/// any more. What can't be removed stays. Does nothing on macOS. Never throws.
void removeTemporaryFolder(const std::string& home, const Environment& session) noexcept;

} // namespace quorvel
