#include "Base/PathText.h"
#include "Platform/entries/BoundedLookup_linux.h"
#include "Platform/entries/CurrentDesktops_linux.h"
#include "Platform/entries/IconTheme.h"
#include "Platform/entries/IconThemeFolder_linux.h"
#include "Platform/entries/KeyFile_linux.h"
#include "Platform/files/FileReading.h"
#include "Platform/files/FileSystem.h"
#include "Platform/homes/UserPaths.h"
#include "Platform/homes/XdgFolders_linux.h"

#include <algorithm>
#include <array>
#include <set>
#include <span>
#include <unordered_set>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

constexpr std::size_t maxThemes = 32;
constexpr const char* fallbackTheme = "hicolor";

// They have the icons of applications that bring none of their own.
constexpr std::array desktopThemes{"Adwaita", "breeze", "gnome"};

bool isFile(const fs::path& path) {
    std::error_code error;
    return !hasNul(path) && fs::is_regular_file(path, error);
}

// Those of the icons that are paths of images, all of which are looked for at once.
std::set<std::string> imagesAmong(const std::vector<std::string>& icons) {
    std::set<std::string> paths;
    for (const std::string& icon : icons) {
        const fs::path ending = fs::path(icon).extension();
        if (icon.starts_with('/') && (ending == ".png" || ending == ".svg")) {
            paths.insert(icon);
        }
    }
    return presentAmong(paths, isFile);
}

std::optional<std::vector<std::string>> namesIn(const std::string& folder) {
    auto names = directoryEntries(folder);
    // One that can't be listed may still contain themes.
    return names || !itemExists(folder) ? names : std::vector<std::string>();
}

// Many entries name a file where the format wants an icon's name.
std::string withoutEnding(const std::string& icon) {
    for (const char* ending : {".png", ".svg", ".xpm"}) {
        if (icon.ends_with(ending)) {
            return icon.substr(0, icon.size() - 4);
        }
    }
    return icon;
}

} // namespace

class IconTheme::Lookup {
public:
    Lookup(const std::string& name, std::vector<fs::path> folders) : folders_(std::move(folders)) {
        listFolders();
        addThemes(name);
    }

    // For a name that may end like a file's.
    std::optional<fs::path> findAny(const std::string& icon) {
        const std::string name = withoutEnding(icon);
        if (name.empty() || icon.find('/') != std::string::npos) {
            return std::nullopt;
        }
        auto file = find(name);
        // An icon may be called "org.example.png" by its name, too.
        return file || name == icon ? file : find(icon);
    }

private:
    std::optional<fs::path> find(const std::string& icon) {
        for (IconThemeFolder& theme : themes_) {
            if (auto file = theme.find(icon)) {
                return file;
            }
        }
        for (const fs::path& folder : folders_) {
            for (const char* ending : {".png", ".svg"}) {
                fs::path file = joinAsText(folder, icon + ending);
                if (beside_.contains(file.native()) && !presentAmong({file}, isFile).empty()) {
                    return file;
                }
            }
        }
        return findInDesktopThemes(icon);
    }

    // Those that don't answer are asked once only, not for each theme.
    void listFolders() {
        std::vector<std::vector<std::string>> lists;
        lists.reserve(folders_.size());
        for (const fs::path& folder : folders_) {
            lists.push_back({folder.native()});
        }
        const auto listed = readInLists<std::vector<std::string>>(lists, namesIn);
        std::erase_if(folders_,
                      [&](const fs::path& folder) { return !listed.contains(folder.native()); });
        for (const auto& [folder, names] : listed) {
            for (const std::string& name : names) {
                beside_.insert(joinAsText(folder, name));
            }
        }
    }

    // Most icons are found before, so these are opened only when they are needed.
    std::optional<fs::path> findInDesktopThemes(const std::string& icon) {
        if (desktopThemes_.empty()) {
            for (const char* name : desktopThemes) {
                desktopThemes_.emplace_back(name, folders_);
            }
        }
        for (IconThemeFolder& theme : desktopThemes_) {
            if (auto file = theme.find(icon)) {
                return file;
            }
        }
        return std::nullopt;
    }

    // Each theme once, those that inherit before what they inherit from.
    void addThemes(const std::string& first) {
        std::vector<std::string> names{first};
        for (std::size_t index = 0; index < names.size(); ++index) {
            const std::string name = names[index];
            if (name.empty() || name.front() == '.' || name.find('/') != std::string::npos ||
                name == fallbackTheme) {
                continue;
            }
            themes_.emplace_back(name, folders_);
            for (const std::string& parent : themes_.back().parents()) {
                if (names.size() < maxThemes &&
                    std::find(names.begin(), names.end(), parent) == names.end()) {
                    names.push_back(parent);
                }
            }
        }
        themes_.emplace_back(fallbackTheme, folders_);
    }

    std::vector<fs::path> folders_;            ///< those that exist and answered
    std::unordered_set<std::string> beside_{}; ///< paths of all that is in `folders_`
    std::vector<IconThemeFolder> themes_{};
    std::vector<IconThemeFolder> desktopThemes_{};
};

IconTheme::IconTheme(const std::string& name, std::vector<fs::path> folders)
    : lookup_(std::make_unique<Lookup>(name, std::move(folders))) {}
IconTheme::IconTheme(IconTheme&&) noexcept = default;
IconTheme& IconTheme::operator=(IconTheme&&) noexcept = default;
IconTheme::~IconTheme() = default;

std::optional<fs::path> IconTheme::find(const std::string& icon) {
    return std::move(findAll({icon}).front());
}

std::vector<std::optional<fs::path>> IconTheme::findAll(const std::vector<std::string>& icons) {
    const std::set<std::string> images = imagesAmong(icons);
    std::vector<std::optional<fs::path>> files;
    files.reserve(icons.size());
    for (const std::string& icon : icons) {
        files.push_back(images.contains(icon) ? fs::path(icon) : lookup_->findAny(icon));
    }
    return files;
}

std::string IconTheme::chosenTheme() {
    struct Setting {
        const char* file;
        const char* group;
        const char* key;
    };
    constexpr Setting settings[] = {{"kdeglobals", "Icons", "Theme"},
                                    {"gtk-4.0/settings.ini", "Settings", "gtk-icon-theme-name"},
                                    {"gtk-3.0/settings.ini", "Settings", "gtk-icon-theme-name"}};
    // KDE's programs write that file on other desktops, too.
    const std::vector<std::string> desktops = currentDesktops();
    const bool isKde = std::find(desktops.begin(), desktops.end(), "KDE") != desktops.end();
    constexpr std::size_t limit = 65536;
    for (const auto& [name, group, key] : std::span(settings).subspan(isKde ? 0 : 1)) {
        const auto text = readFile(joinAsText(xdgConfigHome(), name), limit);
        const auto file = text ? KeyFile::parse(*text, {}) : std::nullopt;
        if (file && !file->text(group, key).empty()) {
            return file->text(group, key);
        }
    }
    return fallbackTheme;
}

std::vector<fs::path> IconTheme::iconFolders() {
    std::vector<fs::path> data = xdgDataFolders();
    std::vector<fs::path> folders{joinAsText(data.front(), "icons"),
                                  joinAsText(UserPaths::home(), ".icons")};
    for (auto folder = data.begin() + 1; folder != data.end(); ++folder) {
        folders.push_back(joinAsText(*folder, "icons"));
    }
    folders.emplace_back("/usr/share/pixmaps");
    return folders;
}

} // namespace quorvel
