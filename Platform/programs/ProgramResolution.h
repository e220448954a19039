#pragma once

#include "Platform/entries/DesktopEntry.h"
#include "Platform/entries/ExecLine.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel {

/// What an installed application is made of, as far as its files show it.
struct ResolvedProgram {
    enum class Packaging { none, flatpak, snap, appImage };
    enum class Engine { other, chromium, electron, firefox, eclipse, java, libreOffice };
    enum class Toolkit { unknown, gtk2, gtk3, gtk4, qt5, qt6, wx };

    std::filesystem::path launcher{};   ///< what is to be started
    std::filesystem::path executable{}; ///< the real file behind links and scripts, if found
    Packaging packaging = Packaging::none;
    Engine engine = Engine::other;
    Toolkit toolkit = Toolkit::unknown; ///< a library in between may hide it
    std::string interpreter{};          ///< of a script that is the program itself: "python3"
    std::string remotingName{};         ///< of the Firefox family: the window's class
    /// Of an AppImage: folders beside it that would take the place of every clone's home.
    std::vector<std::filesystem::path> portableFolders{};
};

/// Returns whether the engine is a browser's: such a program takes its windows' class as an
/// argument, and passes the arguments of a second start on to the one that is running.
[[nodiscard]] constexpr bool isBrowserEngine(ResolvedProgram::Engine engine) noexcept {
    using Engine = ResolvedProgram::Engine;
    return engine == Engine::chromium || engine == Engine::electron || engine == Engine::firefox;
}

/// Returns the folders in which to look for the parts of an application if its launcher doesn't say
/// where they are: they may be in a folder named after the launcher in one of these.
[[nodiscard]] const std::vector<std::filesystem::path>& applicationRoots();

/// Returns the executable file that `program` names: an absolute path, or a name to look up in
/// `PATH`. Returns std::nullopt if there is none. In `PATH`, a file that is `except` is passed
/// over.
[[nodiscard]] std::optional<std::filesystem::path>
findProgram(std::string_view program,
            const std::optional<std::filesystem::path>& except = std::nullopt);

/// Returns whether the file is an AppImage: a program followed by a file-system image. On macOS
/// there are none.
[[nodiscard]] bool isAppImage(const std::filesystem::path& file);

/// Follows the program through links and wrapper scripts to the real file, looks at what lies
/// beside it, and returns what it finds. Snaps are looked for below `snapRoot`. Nothing is run.
/// Returns std::nullopt if the program isn't found; on macOS always.
[[nodiscard]] std::optional<ResolvedProgram>
resolveProgram(std::string_view program,
               const std::vector<std::filesystem::path>& roots = applicationRoots(),
               const std::filesystem::path& snapRoot = "/");

/// Does the same for the program that an entry starts; the entry may say how it is packaged.
[[nodiscard]] std::optional<ResolvedProgram>
resolveProgram(const DesktopEntry& entry, const ExecLine& line,
               const std::vector<std::filesystem::path>& roots = applicationRoots());

} // namespace quorvel
