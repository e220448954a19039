#include "LaunchKit/WrapperLayout.h"

#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/InstanceRegistry.h"
#include "Platform/files/FileSystem.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

// Whether the folder is missing, or readable and holds nothing else than these.
bool holdsAtMost(const fs::path& folder, std::initializer_list<std::string_view> names) {
    if (!itemOrLinkExists(folder)) {
        return true;
    }
    const auto entries = isSymbolicLink(folder) ? std::nullopt : directoryEntries(folder);
    return entries && std::all_of(entries->begin(), entries->end(), [&](const auto& entry) {
               return std::find(names.begin(), names.end(), entry) != names.end();
           });
}

// The same, all of them files.
bool holdsAtMostFiles(const fs::path& folder, std::initializer_list<std::string_view> names) {
    return holdsAtMost(folder, names) &&
           std::all_of(names.begin(), names.end(), [&](std::string_view name) {
               std::error_code code;
               const fs::file_type type = fs::symlink_status(folder / name, code).type();
               return type == fs::file_type::regular || type == fs::file_type::not_found;
           });
}

} // namespace

bool isUnfinishedWrapper(const fs::path& wrapper) {
    const fs::path contents = wrapper / "Contents";
    // The runner comes first; resources without it are somebody's own.
    return holdsAtMost(wrapper, {"Contents"}) && holdsAtMost(contents, {"MacOS", "Resources"}) &&
           holdsAtMostFiles(contents / "MacOS", {"runner"}) &&
           (itemExists(contents / "MacOS" / "runner")
                ? holdsAtMostFiles(contents / "Resources", {"instance.json", "AppIcon.icns"})
                : holdsAtMost(contents / "Resources", {}));
}

bool isDamagedWrapper(const fs::path& wrapper) {
    const fs::path contents = wrapper / "Contents";
    const fs::path resources = contents / "Resources";
    // A replacement or deletion that was cut off may have taken the configuration alone.
    const bool isWhole = itemOrLinkExists(instanceConfigFile(wrapper)) ||
                         (itemExists(contents / "Info.plist") && itemExists(contents / "PkgInfo"));
    return isWhole && !InstanceRegistry().record(wrapper) &&
           itemExists(contents / "MacOS" / "runner") && holdsAtMost(wrapper, {"Contents"}) &&
           holdsAtMost(contents, {"MacOS", "Resources", "Info.plist", "PkgInfo"}) &&
           holdsAtMostFiles(contents / "MacOS", {"runner"}) &&
           holdsAtMostFiles(resources, {"instance.json", "AppIcon.icns"});
}

} // namespace quorvel
