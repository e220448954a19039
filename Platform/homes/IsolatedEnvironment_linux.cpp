#include "Platform/homes/IsolatedEnvironment.h"

#include "Base/PathText.h"
#include "Base/StableHash.h"
#include "Platform/files/ContainedFolder.h"
#include "Platform/files/FileReading.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/FileWriting.h"
#include "Platform/homes/DataFolders.h"
#include "Platform/homes/FolderVariable.h"
#include "Platform/homes/UserFolders.h"
#include "Platform/homes/UserPaths.h"
#include "Platform/homes/XdgFolders_linux.h"
#include "Platform/homes/XdgUserDirs_linux.h"
#include "Platform/removal/ItemRemoval.h"

#include <algorithm>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

// The beginning of a file that is written here. A file without it is not replaced.
constexpr std::string_view userDirsMark =
    "# Written by Quorvel at each start. Without this line, it is left as it is.\n";

bool isOwnPrivateFolder(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
           status.st_uid == ::geteuid() && (status.st_mode & 0077U) == 0;
}

// A folder for one home's temporary files, and the one that has those of all clones. Anybody may
// create a folder in /tmp first, so both are used only if they belong to this user.
struct TemporaryPlace {
    std::string base{};
    std::string shared{};
    std::string own{};

    [[nodiscard]] bool isUsable() const {
        return isOwnPrivateFolder(shared) && isOwnPrivateFolder(own);
    }
};

// Returns where such a folder may be, the best place first. Applications make sockets in it, whose
// whole path may have 107 bytes at most: Telegram's names take 72, so a folder inside the home
// would often be too long.
std::vector<TemporaryPlace> temporaryPlaces(const std::string& home, const Environment& session) {
    constexpr std::size_t longest = 35;
    // The same at each start, short, and without characters that a path can't have.
    const std::string name = stableHash(home).substr(0, 10);
    const auto place = [&](const std::string& base, const std::string& shared) {
        return TemporaryPlace{base, base + "/" + shared, base + "/" + shared + "/" + name};
    };
    std::vector<TemporaryPlace> places{place("/tmp", "quorvel-" + std::to_string(::geteuid()))};
    const std::string runtime = folderVariable(session, "XDG_RUNTIME_DIR", "");
    const TemporaryPlace inRuntime = place(runtime, "quorvel");
    if (!runtime.empty() && inRuntime.own.size() <= longest) {
        places.insert(places.begin(), inRuntime);
    }
    return places;
}

std::string temporaryFolderFor(const std::string& home, const Environment& session) {
    for (const TemporaryPlace& place : temporaryPlaces(home, session)) {
        if (ensureFolderBelow(place.base, place.own) && place.isUsable()) {
            return place.own;
        }
    }
    return "";
}

void renewLink(const std::string& link, const std::string& target) {
    std::error_code ignored;
    if (isSymbolicLink(link)) {
        if (itemExists(target) && fs::read_symlink(link, ignored) == target) {
            return;
        }
        fs::remove(link, ignored);
    }
    if (itemExists(target) && !itemOrLinkExists(link)) {
        fs::create_symlink(target, link, ignored);
    }
}

// The user's fonts, icons, themes and handlers, and nothing else of the user's data: applications
// would find the original's data in the rest.
std::string sessionDataFolder(const std::string& home, const std::string& sessionData) {
    std::string folder = home + "/.local/share/quorvel/session-data";
    if (!ensureFolderBelow(home, folder)) {
        return "";
    }
    for (const char* name : {"applications", "fonts", "icons", "mime", "themes"}) {
        renewLink(joinAsText(folder, name), joinAsText(sessionData, name));
    }
    return folder;
}

bool isShared(std::string_view name) {
    return name == "DESKTOP" || name == "DOCUMENTS" || name == "DOWNLOAD";
}

// Without this file, GLib knows no Downloads or Documents at all.
std::vector<XdgUserDir> userDirsFor(const std::string& realHome, const IsolationOptions& options) {
    std::vector<XdgUserDir> folders = readXdgUserDirs(xdgConfigHome());
    for (const auto& [name, kind] :
         {std::pair{"DESKTOP", "Desktop"}, {"DOWNLOAD", "Downloads"}, {"DOCUMENTS", "Documents"}}) {
        const auto present =
            std::find_if(folders.begin(), folders.end(),
                         [name = name](const XdgUserDir& each) { return each.name == name; });
        XdgUserDir& each = present == folders.end() ? folders.emplace_back() : *present;
        // The clone's own have the names by which they are found when they are to be shared.
        each = {name, options.sharesUserFolders ? userFolder(kind, realHome)
                                                : "$HOME/" + std::string(kind)};
    }
    for (XdgUserDir& each : folders) {
        if (!isShared(each.name) && each.folder.starts_with("/")) {
            each.folder = "$HOME/" + lastPathComponent(each.folder);
        }
    }
    return folders;
}

void writeUserDirs(const std::string& home, const std::string& realHome,
                   const IsolationOptions& options) {
    const std::string file = home + "/.config/user-dirs.dirs";
    const std::string text =
        std::string(userDirsMark) + xdgUserDirsText(userDirsFor(realHome, options));
    if (!ensureFolderBelow(home, home + "/.config") || isSymbolicLink(file)) {
        return;
    }
    constexpr std::size_t limit = 65536;
    const std::optional<std::string> present = readFile(file, limit);
    if (itemExists(file) && (!present || !present->starts_with(userDirsMark) || *present == text)) {
        return;
    }
    try {
        writeFile(file, text);
    } catch (const PlatformError&) {
        // The application works without its special folders.
    }
}

std::string javaOption(std::string_view name, const std::string& value) {
    const std::string option = "-D" + std::string(name) + "=" + value;
    return option.find(' ') == std::string::npos ? option : "\"" + option + "\"";
}

std::string javaOptions(const Environment& session, const std::string& home,
                        const std::string& temporary) {
    const std::string present = valueOf(session, "JAVA_TOOL_OPTIONS");
    std::string options = present.empty() ? "" : present + " ";
    options += javaOption("user.home", home);
    return temporary.empty() ? options : options + " " + javaOption("java.io.tmpdir", temporary);
}

} // namespace

Environment isolatedEnvironment(const std::string& home, const Environment& session,
                                const IsolationOptions& options) {
    const std::string realHome = UserPaths::home();
    if (isSameItem(home, realHome)) {
        return {}; // the clone is configured to use the user's own data
    }
    Environment set{
        // Settings written through dconf's service would land in the real home.
        {"GSETTINGS_BACKEND", "keyfile"},
    };
    for (const UserDataFolder& folder : userDataFolders) {
        set[folder.variable] = home + "/" + folder.usual;
    }
    if (valueOf(session, "XAUTHORITY").empty() && itemExists(realHome + "/.Xauthority")) {
        // X clients look for it in HOME otherwise.
        set["XAUTHORITY"] = realHome + "/.Xauthority";
    }
    const std::string temporary = temporaryFolderFor(home, session);
    if (!temporary.empty()) {
        set["TMPDIR"] = temporary;
    }
    const std::string sessionData = xdgDataHome();
    const std::string data = sessionDataFolder(home, sessionData);
    if (!data.empty()) {
        const std::string folders = valueOf(session, "XDG_DATA_DIRS");
        set["XDG_DATA_DIRS"] =
            data + ":" + (folders.empty() ? std::string(defaultXdgDataDirs) : folders);
    }
    writeUserDirs(home, realHome, options);
    if (options.usesFlatpak) {
        set["FLATPAK_USER_DIR"] =
            folderVariable(session, "FLATPAK_USER_DIR", sessionData + "/flatpak");
    }
    if (options.usesJava) {
        set["JAVA_TOOL_OPTIONS"] = javaOptions(session, home, temporary);
    }
    return set;
}

void removeTemporaryFolder(const std::string& home, const Environment& session) noexcept {
    for (const TemporaryPlace& place : temporaryPlaces(home, session)) {
        try {
            const auto removal =
                place.isUsable() ? ItemRemoval::of(place.own) : std::optional<ItemRemoval>{};
            if (removal) {
                removal->refuseMounts();
                (void)removal->remove();
            }
        } catch (const std::exception&) {
            continue; // it is small, and gone after a restart at the latest
        }
    }
}

} // namespace quorvel
