#include "Base/PathText.h"
#include "Platform/desktop/IconTheme.h"
#include "Platform/desktop/IconThemeFolder_linux.h"
#include "Platform/desktop/XdgFolders_linux.h"
#include "Platform/files/UserPaths.h"

#include <algorithm>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

constexpr std::size_t maxThemes = 32;
constexpr const char* fallbackTheme = "hicolor";

bool isFile(const fs::path& path) {
    std::error_code error;
    return !hasNul(path) && fs::is_regular_file(path, error);
}

bool isImage(const fs::path& path) {
    return (path.extension() == ".png" || path.extension() == ".svg") && isFile(path);
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
        addThemes(name);
    }

    std::optional<fs::path> find(const std::string& icon) {
        for (IconThemeFolder& theme : themes_) {
            if (auto file = theme.find(icon)) {
                return file;
            }
        }
        for (const fs::path& folder : folders_) {
            for (const char* ending : {".png", ".svg"}) {
                fs::path file = joinAsText(folder, icon + ending);
                if (isFile(file)) {
                    return file;
                }
            }
        }
        return std::nullopt;
    }

private:
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

    std::vector<fs::path> folders_;
    std::vector<IconThemeFolder> themes_{};
};

IconTheme::IconTheme(const std::string& name, std::vector<fs::path> folders)
    : lookup_(std::make_unique<Lookup>(name, std::move(folders))) {}
IconTheme::IconTheme(IconTheme&&) noexcept = default;
IconTheme& IconTheme::operator=(IconTheme&&) noexcept = default;
IconTheme::~IconTheme() = default;

std::optional<fs::path> IconTheme::find(const std::string& icon) {
    if (icon.starts_with('/')) {
        return isImage(icon) ? std::optional<fs::path>(icon) : std::nullopt;
    }
    const std::string name = withoutEnding(icon);
    if (name.empty() || icon.find('/') != std::string::npos) {
        return std::nullopt;
    }
    auto file = lookup_->find(name);
    // An icon may be called "org.example.png" by its name, too.
    return file || name == icon ? file : lookup_->find(icon);
}

std::string IconTheme::chosenTheme() {
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
