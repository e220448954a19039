#include "Platform/entries/IconThemeFolder_linux.h"

#include "Base/PathText.h"
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

} // namespace

IconThemeFolder::IconThemeFolder(const std::string& name, const std::vector<fs::path>& folders) {
    bool isDescribed = false;
    for (const fs::path& folder : folders) {
        parts_.push_back(joinAsText(folder, name));
        if (!isDescribed) {
            const auto index = readFile(parts_.back().native() + "/index.theme", maxIndexSize);
            isDescribed = index.has_value();
            readIndex(index.value_or(""));
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

void IconThemeFolder::listFolder(std::size_t part, std::size_t folder) {
    constexpr std::string_view png = ".png";
    constexpr std::string_view svg = ".svg";
    auto opened = Folder::open(joinAsText(parts_[part], folders_[folder].path));
    if (!opened) {
        return;
    }
    for (std::string& name : opened->entries()) {
        const bool isSvg = name.ends_with(svg);
        if ((!isSvg && !name.ends_with(png)) || icons_.size() == maxIcons) {
            continue;
        }
        name.resize(name.size() - png.size());
        const Found found{part, folder, isSvg};
        const auto [known, isNew] = icons_.try_emplace(std::move(name), found);
        if (!isNew && rank(known->second) < rank(found)) {
            known->second = found;
        }
    }
}

void IconThemeFolder::listFolders() {
    for (std::size_t part = 0; part < parts_.size(); ++part) {
        if (!itemExists(parts_[part])) {
            continue;
        }
        for (std::size_t folder = 0; folder < folders_.size(); ++folder) {
            listFolder(part, folder);
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
