#pragma once

#include "Platform/entries/DesktopEntry.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

/// What the user's own menu shows of a clone: a desktop entry, and pictures in the theme that every
/// other theme falls back to. An entry is recognized by its `cloneId`, the pictures by their name,
/// which begins with the clone's own word. On macOS there is no such menu: nothing is written.
namespace quorvel {

/// One size of an icon.
struct MenuPicture {
    int side = 0;        ///< of a PNG, in pixels; 0: an SVG; `symbolic`: an SVG in one color
    std::string bytes{}; ///< the file

    static constexpr int symbolic = -1;

    bool operator==(const MenuPicture&) const = default;
};

struct MenuEntry {
    std::string word{};     ///< the clone's own: letters, digits and "-"
    std::string fileName{}; ///< "WORD.desktop", or with a prefix
    /// `cloneId` is not empty. `icon` is empty, or the pictures' name: "WORD-…", a new one for each
    /// new picture, since desktops keep showing the picture that they know by a name.
    DesktopEntry entry{};
};

/// An entry that was published for some clone.
struct PublishedEntry {
    std::string fileName{};
    DesktopEntry entry{}; ///< without translations
    std::filesystem::file_time_type written{};
};

/// Returns whether there is a menu to publish in.
[[nodiscard]] bool hasMenu() noexcept;

/// Returns whether this desktop notices a new entry only after some seconds, and takes an
/// application that is started before that for another one.
[[nodiscard]] bool noticesEntriesLate();

/// Publishes the entry in place of the clone's older one: first the pictures, so that no desktop
/// looks for one that isn't there yet. A concurrent reader finds the old entry or the new one.
/// Pictures that are no longer named are removed, as far as possible. Throws `PlatformError`, also
/// if the file's name belongs to an entry that is not the clone's, and `DesktopEntryError`; the
/// older entry then remains. An empty file of that name counts as the clone's, since a power cut
/// may have emptied it.
void publishMenuEntry(const MenuEntry& entry, const std::vector<MenuPicture>& pictures);

/// Does the same for a caller that knows the clone's older entries. Without `pictures`, existing
/// ones stay, and get a new date. Returns whether `updateMenuTypes` must follow, which takes as
/// long for many entries as for one.
[[nodiscard]] bool publishMenuEntry(const MenuEntry& entry,
                                    const std::vector<MenuPicture>& pictures,
                                    const std::vector<PublishedEntry>& older);

/// Lets desktops know which files and addresses the published entries open. Failures are ignored.
void updateMenuTypes();

/// Removes the clone's entries, also under other file names, and its pictures. Does nothing if
/// there are none. Throws `PlatformError`.
void withdrawMenuEntry(const std::string& cloneId, const std::string& word);

/// Removes the temporary files that interrupted publications left.
void removeMenuLeftovers();

/// Removes the pictures of these clones that no entry names and that are older than a minute, which
/// an interrupted publication leaves. `named` has the icons that the clones' entries name, by the
/// clones' words. If such an icon is not one of the clone's own, all of the clone's pictures are
/// removed.
void removeOldMenuPictures(const std::map<std::string, std::string>& named);

/// Returns all entries that were published for clones. Those that can't be read are left out.
[[nodiscard]] std::vector<PublishedEntry> publishedMenuEntries();

/// Returns the entry that was published for the clone, if there is one.
[[nodiscard]] std::optional<PublishedEntry> publishedEntryOf(const std::string& cloneId);

/// Returns whether there is a picture of this name and that `MenuPicture::side`. An empty file does
/// not count.
[[nodiscard]] bool hasMenuPicture(const std::string& icon, int side);

/// Returns the name of the icon's picture in one color, which desktops draw in the color of their
/// texts.
[[nodiscard]] inline std::string symbolicIconName(const std::string& icon) {
    return icon + "-symbolic";
}

} // namespace quorvel
