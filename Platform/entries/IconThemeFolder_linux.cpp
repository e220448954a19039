#include "Platform/entries/IconThemeFolder_linux.h"

#include "Base/PathText.h"
#include "Platform/entries/BoundedLookup_linux.h"
#include "Platform/entries/IconTheme.h"
#include "Platform/entries/KeyFile_linux.h"
#include "Platform/files/FileReading.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/Folder.h"

#include <algorithm>
#include <set>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

const std::string themeGroup = "Icon Theme";

bool leadsOut(const std::string& path) {
    const fs::path relative(path);
    return relative.empty() || relative.is_absolute() ||
           std::find(relative.begin(), relative.end(), "..") != relative.end();
}

using Names = std::vector<std::string>;

constexpr std::string_view png = ".png";
constexpr std::string_view svg = ".svg";

// A part of a theme, with its index if it has one.
struct Part {
    std::optional<std::string> index{};
};

std::optional<Part> partIn(const std::string& folder) {
    return itemExists(folder)
               ? std::optional(Part{
                     .index = readFile(folder + "/index.theme", IconThemeFolder::maxIndexSize)})
               : std::nullopt;
}

std::optional<Names> picturesIn(const std::string& folder) {
    auto opened = Folder::open(folder);
    if (!opened) {
        return std::nullopt;
    }
    Names names = opened->entries();
    std::erase_if(names, [](const std::string& name) {
        return !name.ends_with(png) && !name.ends_with(svg);
    });
    return names;
}

} // namespace

IconThemeFolder::IconThemeFolder(const std::string& name, const std::vector<fs::path>& folders) {
    std::vector<Names> lists;
    lists.reserve(folders.size());
    for (const fs::path& folder : folders) {
        lists.push_back({joinAsText(folder, name)});
    }
    const auto parts = readInLists<Part>(lists, partIn);
    bool isDescribed = false;
    for (const Names& list : lists) {
        const auto part = parts.find(list.front());
        if (part == parts.end()) {
            continue;
        }
        parts_.emplace_back(part->first);
        if (!isDescribed && part->second.index) {
            isDescribed = true;
            readIndex(*part->second.index);
        }
    }
}

void IconThemeFolder::readIndex(const std::string& index) {
    const auto file = KeyFile::parse(index, {}, ',');
    if (!file) {
        return;
    }
    parents_ = file->list(themeGroup, "Inherits");
    std::set<std::string> seen;
    for (const char* key : {"Directories", "ScaledDirectories"}) {
        for (const std::string& path : file->list(themeGroup, key)) {
            if (folders_.size() == maxFolders) {
                return;
            }
            if (!leadsOut(path) && seen.insert(path).second) {
                const int scale = std::clamp(file->number(path, "Scale"), 1, 16);
                folders_.push_back({path, std::clamp(file->number(path, "Size"), 0, 4096) * scale});
            }
        }
    }
}

// A small picture that is drawn large is worse than any that scales.
int IconThemeFolder::rank(const Found& found) const {
    const int pixels = folders_[found.folder].pixels;
    if (found.isSvg) {
        return IconTheme::smallest;
    }
    return pixels >= IconTheme::smallest ? pixels + 1 : pixels - 1;
}

void IconThemeFolder::add(const Names& names, std::size_t part, std::size_t folder) {
    for (const std::string& name : names) {
        if (icons_.size() == maxIcons) {
            return;
        }
        const Found found{part, folder, name.ends_with(svg)};
        const auto [known, isNew] =
            icons_.try_emplace(name.substr(0, name.size() - png.size()), found);
        if (!isNew && rank(known->second) < rank(found)) {
            known->second = found;
        }
    }
}

void IconThemeFolder::listFolders() {
    std::vector<Names> lists;
    lists.reserve(parts_.size());
    for (const fs::path& part : parts_) {
        Names& folders = lists.emplace_back();
        for (const SizeFolder& folder : folders_) {
            folders.push_back(joinAsText(part, folder.path));
        }
    }
    const auto pictures = readInLists<Names>(lists, picturesIn);
    for (std::size_t part = 0; part < lists.size(); ++part) {
        for (std::size_t folder = 0; folder < folders_.size(); ++folder) {
            if (const auto names = pictures.find(lists[part][folder]); names != pictures.end()) {
                add(names->second, part, folder);
            }
        }
    }
    isListed_ = true;
}

std::optional<fs::path> IconThemeFolder::find(const std::string& icon) {
    if (!isListed_) {
        listFolders();
    }
    const auto found = icons_.find(icon);
    if (found == icons_.end()) {
        return std::nullopt;
    }
    const auto& [part, folder, isSvg] = found->second;
    std::string file = parts_[part].native();
    file.append("/").append(folders_[folder].path).append("/").append(icon);
    return file.append(isSvg ? ".svg" : ".png");
}

} // namespace quorvel
