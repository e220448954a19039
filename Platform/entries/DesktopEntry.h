#pragma once

#include "Base/Error.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel {

/// Why a desktop entry can't be read or written. The text completes a sentence: "there is no group
/// “Desktop Entry”".
class DesktopEntryError : public Error {
public:
    using Error::Error;
};

/// One of the further actions in an application's menu, such as "New Private Window".
struct DesktopAction {
    std::string id{}; ///< letters, digits and "-"
    std::string name{};
    std::string icon{};
    std::string exec{};

    bool operator==(const DesktopAction&) const = default;
};

/// What a desktop entry says about an application. Texts are in the user's language; keys that are
/// missing are empty or false.
struct DesktopEntry {
    static constexpr std::size_t maxActions = 100;

    std::string type{}; ///< "Application" for what can be started
    std::string name{};
    std::string comment{};
    std::string exec{}; ///< as `ExecLine` reads it
    std::string tryExec{};
    std::string icon{}; ///< a name, or an absolute path
    std::string path{}; ///< the working directory
    std::string startupWmClass{};
    std::optional<bool> startupNotify{};
    bool terminal = false;
    bool hidden = false; ///< counts as deleted
    bool noDisplay = false;
    bool dbusActivatable = false;
    std::vector<std::string> categories{};
    std::vector<std::string> mimeTypes{};
    std::vector<std::string> keywords{};
    std::vector<std::string> onlyShowIn{};
    std::vector<std::string> notShowIn{};
    std::string flatpakId{};
    std::string snapInstance{};
    std::string cloneId{};                ///< of the clone that the entry was published for
    std::vector<DesktopAction> actions{}; ///< those with a name, `maxActions` at most

    bool operator==(const DesktopEntry&) const = default;

    /// Returns whether a desktop of these names (`XDG_CURRENT_DESKTOP`) may show it.
    [[nodiscard]] bool isShownIn(const std::vector<std::string>& desktops) const;
};

/// Returns the languages in which texts are looked for: those of the user's messages, the best
/// first. Empty on macOS.
[[nodiscard]] std::vector<std::string> desktopEntryLanguages();

/// Returns the entry in a text. Translated texts are in the first of the languages that they have.
/// Throws `DesktopEntryError` if the text is not a desktop entry. A value that is not UTF-8 counts
/// as missing. On macOS there are no entries, and it always throws.
[[nodiscard]] DesktopEntry parseDesktopEntry(std::string_view text,
                                             const std::vector<std::string>& languages);

/// Reads an entry from a regular file (links followed) of at most `maxDesktopEntrySize`, without
/// blocking, in the user's languages. Throws `PlatformError`.
[[nodiscard]] DesktopEntry readDesktopEntry(const std::filesystem::path& file);
constexpr std::size_t maxDesktopEntrySize = std::size_t{1} << 20U;

/// Returns the text of a file from which exactly this entry is read. Throws `DesktopEntryError` for
/// what can't be written, such as a NUL byte, bytes that are not UTF-8, or a line break in a path
/// or command; on macOS always.
[[nodiscard]] std::string desktopEntryText(const DesktopEntry& entry);

} // namespace quorvel
