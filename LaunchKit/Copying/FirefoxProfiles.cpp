#include "LaunchKit/Copying/FirefoxProfiles.h"

#include "Base/PathText.h"
#include "Base/SplitText.h"
#include "Platform/files/FileReading.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

struct Group {
    std::string name{};
    std::map<std::string, std::string> values{};

    [[nodiscard]] std::string value(const std::string& key) const {
        const auto found = values.find(key);
        return found == values.end() ? "" : found->second;
    }
};

std::vector<Group> groupsIn(std::string_view text) {
    std::vector<Group> groups;
    while (!text.empty()) {
        std::string_view line = takePart(text, '\n');
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        const std::size_t equals = line.find('=');
        if (line.starts_with('[') && line.ends_with(']')) {
            groups.push_back({.name = std::string(line.substr(1, line.size() - 2))});
        } else if (equals != std::string_view::npos && !groups.empty()) {
            groups.back().values.emplace(line.substr(0, equals), line.substr(equals + 1));
        }
    }
    return groups;
}

// Returns the path of the profile to open, as the file spells it; empty if that can't be told.
std::string defaultIn(const std::vector<Group>& groups) {
    std::set<std::string> ofInstallations;
    std::set<std::string> marked;
    std::set<std::string> all;
    for (const Group& group : groups) {
        if (group.name.starts_with("Install") && !group.value("Default").empty()) {
            ofInstallations.insert(group.value("Default"));
        } else if (group.name.starts_with("Profile") && !group.value("Path").empty()) {
            all.insert(group.value("Path"));
            if (group.value("Default") == "1") {
                marked.insert(group.value("Path"));
            }
        }
    }
    for (const std::set<std::string>& candidates : {ofInstallations, marked, all}) {
        if (!candidates.empty()) {
            return candidates.size() == 1 ? *candidates.begin() : "";
        }
    }
    return {};
}

} // namespace

std::optional<fs::path> defaultFirefoxProfile(const fs::path& folder) {
    constexpr std::size_t limit = std::size_t{1} << 20U;
    const auto text = readFile(joinAsText(folder, "profiles.ini"), limit);
    const std::vector<Group> groups = text ? groupsIn(*text) : std::vector<Group>();
    const std::string path = defaultIn(groups);
    const auto profile = std::find_if(groups.begin(), groups.end(), [&](const Group& group) {
        return group.name.starts_with("Profile") && group.value("Path") == path;
    });
    if (path.empty() || profile == groups.end()) {
        return std::nullopt;
    }
    const fs::path found =
        profile->value("IsRelative") == "0" ? fs::path(path) : joinAsText(folder, path);
    std::error_code code;
    return found.is_absolute() && fs::is_directory(found, code) ? std::optional(found)
                                                                : std::nullopt;
}

} // namespace quorvel
