#include "Platform/entries/MenuEntry.h"

#include "Base/PathText.h"
#include "Platform/entries/CurrentDesktops_linux.h"
#include "Platform/entries/MimeDatabase_linux.h"
#include "Platform/files/FileReading.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/FileWriting.h"
#include "Platform/files/PlatformError.h"
#include "Platform/homes/XdgFolders_linux.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <ctime>
#include <fcntl.h>
#include <map>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

constexpr std::string_view entryEnding = ".desktop";
constexpr std::string_view mark = "X-Quorvel-Clone=";

fs::path entryFolder() {
    return joinAsText(xdgDataHome(), "applications");
}

fs::path themeFolder() {
    return joinAsText(xdgDataHome(), "icons/hicolor");
}

fs::path pictureFolder(int side) {
    const std::string size = std::to_string(side);
    return joinAsText(themeFolder(), side == MenuPicture::symbolic ? "symbolic/apps"
                                     : side == 0                   ? "scalable/apps"
                                                                   : size + "x" + size + "/apps");
}

std::string pictureName(const std::string& icon, int side) {
    return side == MenuPicture::symbolic ? symbolicIconName(icon) + ".svg"
                                         : icon + (side == 0 ? ".svg" : ".png");
}

// Every size that was ever published.
constexpr std::array pictureSides{MenuPicture::symbolic, 0, 48, 128, 256};

// Returns the entry in a file if it is of a clone.
std::optional<DesktopEntry> cloneEntryIn(const fs::path& file) {
    const auto text = readFile(file.native(), maxDesktopEntrySize);
    if (!text || text->find(mark) == std::string::npos) {
        return std::nullopt;
    }
    try {
        DesktopEntry entry = parseDesktopEntry(*text, {});
        return entry.cloneId.empty() ? std::nullopt : std::optional(std::move(entry));
    } catch (const DesktopEntryError&) {
        return std::nullopt;
    }
}

void removeFile(const fs::path& file) {
    if (::unlink(file.c_str()) != 0 && errno != ENOENT) {
        throw PlatformError::fromErrno(file, "removed");
    }
}

// Removes the clone's pictures.
void removePictures(const std::string& word) {
    for (const int side : pictureSides) {
        const fs::path folder = pictureFolder(side);
        for (const std::string& name :
             directoryEntries(folder).value_or(std::vector<std::string>{})) {
            if (name.starts_with(word + "-")) {
                removeFile(joinAsText(folder, name));
            }
        }
    }
}

// Desktops that keep a list of a theme's icons make it again when the theme's folder has another
// time, which they compare in whole seconds.
void touchTheme() {
    const fs::path folder = themeFolder();
    struct stat status {};
    timespec time{};
    ::clock_gettime(CLOCK_REALTIME, &time);
    if (::stat(folder.c_str(), &status) == 0 && status.st_mtim.tv_sec >= time.tv_sec) {
        time = {.tv_sec = status.st_mtim.tv_sec + 1, .tv_nsec = 0};
    }
    const std::array<timespec, 2> times{time, time};
    (void)::utimensat(AT_FDCWD, folder.c_str(), times.data(), 0);
}

void writePictures(const std::string& icon, const std::vector<MenuPicture>& pictures) {
    for (const MenuPicture& picture : pictures) {
        const fs::path folder = pictureFolder(picture.side);
        createDirectories(folder);
        // After a power cut, an entry must not name a picture that is empty.
        writeWholeFile(joinAsText(folder, pictureName(icon, picture.side)), picture.bytes,
                       Flush::now);
    }
    touchTheme();
}

// Gives pictures that stay a new date, so that they are not taken for those that an interrupted
// publication left.
void touchPictures(const MenuEntry& entry) {
    if (!entry.entry.icon.starts_with(entry.word + "-")) {
        return;
    }
    for (const int side : pictureSides) {
        const fs::path picture =
            joinAsText(pictureFolder(side), pictureName(entry.entry.icon, side));
        (void)::utimensat(AT_FDCWD, picture.c_str(), nullptr, AT_SYMLINK_NOFOLLOW);
    }
}

// A power cut may have left an entry without its contents, and with them without the mark. No other
// program makes an empty file under a clone's own name.
bool isEmptied(const fs::path& file) {
    struct stat status {};
    return ::lstat(file.c_str(), &status) == 0 && S_ISREG(status.st_mode) && status.st_size == 0 &&
           status.st_uid == ::geteuid() && status.st_nlink == 1;
}

void requireOwn(const fs::path& file, const std::string& cloneId) {
    const auto old = cloneEntryIn(file);
    if (itemOrLinkExists(file) && (old ? old->cloneId != cloneId : !isEmptied(file))) {
        throw PlatformError::because("it belongs to something else", file, "replaced");
    }
}

std::vector<PublishedEntry> entriesOf(const std::string& cloneId) {
    std::vector<PublishedEntry> entries = publishedMenuEntries();
    std::erase_if(entries, [&](const PublishedEntry& published) {
        return published.entry.cloneId != cloneId;
    });
    return entries;
}

bool hadTypes(const std::vector<PublishedEntry>& entries) {
    return std::any_of(entries.begin(), entries.end(), [](const PublishedEntry& published) {
        return !published.entry.mimeTypes.empty();
    });
}

void removeEntriesBut(const std::vector<PublishedEntry>& entries, const std::string& kept) {
    for (const PublishedEntry& published : entries) {
        if (published.fileName != kept) {
            removeFile(joinAsText(entryFolder(), published.fileName));
        }
    }
}

// What can't be removed does no harm, and the next repair tries again.
void removeOlder(const std::vector<PublishedEntry>& older, const MenuEntry& entry) noexcept {
    try {
        removeEntriesBut(older, entry.fileName);
        for (const PublishedEntry& each : older) {
            const std::string& icon = each.entry.icon;
            for (const int side : pictureSides) {
                if (icon.starts_with(entry.word + "-") && icon != entry.entry.icon) {
                    removeFile(joinAsText(pictureFolder(side), pictureName(icon, side)));
                }
            }
        }
    } catch (const std::exception&) {
        return;
    }
}

// A younger one may belong to an entry that is about to be written.
bool isOlderThanAMinute(const fs::path& file) {
    std::error_code code;
    const auto written = fs::last_write_time(file, code);
    return !code && written < fs::file_time_type::clock::now() - std::chrono::minutes(1);
}

} // namespace

bool hasMenu() noexcept {
    return true;
}

bool noticesEntriesLate() {
    const std::vector<std::string> desktops = currentDesktops();
    return std::find(desktops.begin(), desktops.end(), "GNOME") != desktops.end();
}

void publishMenuEntry(const MenuEntry& entry, const std::vector<MenuPicture>& pictures) {
    if (publishMenuEntry(entry, pictures, entriesOf(entry.entry.cloneId))) {
        updateMenuTypes();
    }
}

bool publishMenuEntry(const MenuEntry& entry, const std::vector<MenuPicture>& pictures,
                      const std::vector<PublishedEntry>& older) {
    for (const std::string& name : {entry.fileName, entry.entry.icon}) {
        if (name.find('/') != std::string::npos) {
            throw DesktopEntryError("“" + name + "” is not a file name");
        }
    }
    const fs::path file = joinAsText(entryFolder(), entry.fileName);
    const std::string text = desktopEntryText(entry.entry);
    requireOwn(file, entry.entry.cloneId);
    if (pictures.empty()) {
        touchPictures(entry);
    } else {
        writePictures(entry.entry.icon, pictures);
    }
    createDirectories(entryFolder());
    // A power cut must not leave an empty entry, which would no longer say whose it is.
    writeWholeFile(file, text, Flush::now);
    removeOlder(older, entry);
    return hadTypes(older) || !entry.entry.mimeTypes.empty();
}

void updateMenuTypes() {
    updateMimeDatabase(entryFolder());
}

void withdrawMenuEntry(const std::string& cloneId, const std::string& word) {
    const std::vector<PublishedEntry> entries = entriesOf(cloneId);
    // The entries last: while one is there, an interrupted withdrawal can be finished.
    removePictures(word);
    removeEntriesBut(entries, "");
    if (const fs::path file = joinAsText(entryFolder(), word + ".desktop"); isEmptied(file)) {
        removeFile(file);
    }
    if (hadTypes(entries)) {
        updateMenuTypes();
    }
}

void removeMenuLeftovers() {
    removeUnfinishedFiles(entryFolder());
    for (const int side : pictureSides) {
        removeUnfinishedFiles(pictureFolder(side));
    }
}

void removeOldMenuPictures(const std::map<std::string, std::string>& named) {
    std::map<std::string, std::string> icons; // by what the pictures' names begin with
    for (const auto& [word, icon] : named) {
        icons[word + "-"] = icon;
    }
    for (const int side : pictureSides) {
        const fs::path folder = pictureFolder(side);
        for (const std::string& name :
             directoryEntries(folder).value_or(std::vector<std::string>{})) {
            auto icon = icons.upper_bound(name);
            if (icon == icons.begin() || !name.starts_with((--icon)->first) ||
                name == pictureName(icon->second, side)) {
                continue;
            }
            if (const fs::path file = joinAsText(folder, name); isOlderThanAMinute(file)) {
                (void)::unlink(file.c_str());
            }
        }
    }
}

std::vector<PublishedEntry> publishedMenuEntries() {
    const fs::path folder = entryFolder();
    std::vector<PublishedEntry> found;
    for (std::string& name : directoryEntries(folder).value_or(std::vector<std::string>{})) {
        if (!name.ends_with(entryEnding)) {
            continue;
        }
        const fs::path file = joinAsText(folder, name);
        if (auto entry = cloneEntryIn(file)) {
            std::error_code ignored;
            found.push_back(
                {std::move(name), std::move(*entry), fs::last_write_time(file, ignored)});
        }
    }
    return found;
}

std::optional<PublishedEntry> publishedEntryOf(const std::string& cloneId) {
    std::vector<PublishedEntry> entries = entriesOf(cloneId);
    return entries.empty() ? std::nullopt : std::optional(std::move(entries.front()));
}

bool hasMenuPicture(const std::string& icon, int side) {
    const fs::path file = joinAsText(pictureFolder(side), pictureName(icon, side));
    struct stat status {};
    return ::stat(file.c_str(), &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0;
}

} // namespace quorvel
