#include "LaunchKit/Wrappers/WrapperLayout.h"

#include "Base/BundleLayout.h"
#include "Base/CloneLayout.h"
#include "Base/PathText.h"
#include "LaunchKit/InstanceConfig.h"
#include "Platform/files/FileSystem.h"
#include "Platform/homes/UserPaths.h"

#include <algorithm>
#include <initializer_list>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

constexpr std::string_view configName = "instance.json";
constexpr std::string_view iconFileName = "AppIcon.icns";
constexpr std::string_view notesName = "wrapper.json";
constexpr std::string_view chosenIconName = "ChosenIcon";
static_assert(iconFileName.starts_with(wrapperIconName));

// Returns whether the folder is missing, or readable and without entries other than these.
bool holdsAtMost(const fs::path& folder, std::initializer_list<std::string_view> names) {
    if (!itemOrLinkExists(folder)) {
        return true;
    }
    const auto entries = isSymbolicLink(folder) ? std::nullopt : directoryEntries(folder);
    return entries && std::all_of(entries->begin(), entries->end(), [&](const auto& entry) {
               return std::find(names.begin(), names.end(), entry) != names.end();
           });
}

// The same, but all entries must be regular files.
bool holdsAtMostFiles(const fs::path& folder, std::initializer_list<std::string_view> names) {
    return holdsAtMost(folder, names) &&
           std::all_of(names.begin(), names.end(), [&](std::string_view name) {
               std::error_code code;
               const fs::file_type type = fs::symlink_status(folder / name, code).type();
               return type == fs::file_type::regular || type == fs::file_type::not_found;
           });
}

// Returns whether a wrapper's folders contain only what a wrapper does.
bool holdsAtMostWrapperFiles(const fs::path& wrapper) {
    return holdsAtMostFiles(executablesOf(wrapper), {wrapperExecutableName}) &&
           holdsAtMostFiles(resourcesOf(wrapper),
                            {configName, iconFileName, notesName, chosenIconName}) &&
           holdsAtMostFiles(frameworksOf(wrapper), {webHostModule}) &&
           holdsAtMostFiles(helpersOf(wrapper), {statusItemProgram});
}

} // namespace

std::string configOf(const std::string& wrapper) {
    return resourceOf(wrapper, configName);
}

std::string iconOf(const std::string& wrapper) {
    return resourceOf(wrapper, iconFileName);
}

std::string notesOf(const std::string& wrapper) {
    return resourceOf(wrapper, notesName);
}

std::string chosenIconOf(const std::string& wrapper) {
    return resourceOf(wrapper, chosenIconName);
}

std::string runnerOf(const std::string& wrapper) {
    return executableOf(wrapper, wrapperExecutableName);
}

std::string webHostOf(const std::string& wrapper) {
    return joinAsText(frameworksOf(wrapper), webHostModule);
}

std::string statusItemOf(const std::string& wrapper) {
    return joinAsText(helpersOf(wrapper), statusItemProgram);
}

fs::path wrapperPath(const fs::path& directory, std::string_view displayName) {
    return joinAsText(directory, std::string(displayName) + ".app");
}

fs::path userApplicationsFolder() {
    return UserPaths::expandTilde("~/Applications");
}

bool isUnfinishedWrapper(const fs::path& wrapper) {
    // The runner is written first; resources without it belong to someone else.
    return holdsAtMost(wrapper, {BundleItem::contents}) &&
           holdsAtMost(contentsOf(wrapper), {BundleItem::executables, BundleItem::resources,
                                             BundleItem::frameworks, BundleItem::helpers}) &&
           holdsAtMostWrapperFiles(wrapper) &&
           (itemExists(runnerOf(wrapper)) || holdsAtMost(resourcesOf(wrapper), {}));
}

bool isDamagedWrapper(const fs::path& wrapper) {
    // An interrupted replacement or deletion may have removed the configuration alone.
    const bool isWhole = itemOrLinkExists(configOf(wrapper)) ||
                         (itemExists(infoPlistOf(wrapper)) &&
                          itemExists(joinAsText(contentsOf(wrapper), BundleItem::pkgInfo)));
    return isWhole && !InstanceConfig::read(configOf(wrapper)) && itemExists(runnerOf(wrapper)) &&
           holdsAtMost(wrapper, {BundleItem::contents}) &&
           holdsAtMost(contentsOf(wrapper),
                       {BundleItem::executables, BundleItem::resources, BundleItem::frameworks,
                        BundleItem::helpers, BundleItem::infoPlist, BundleItem::pkgInfo}) &&
           holdsAtMostWrapperFiles(wrapper);
}

} // namespace quorvel
