#include "LaunchKit/AppCatalog.h"

#include "Base/BundleName.h"
#include "LaunchKit/NameOrder.h"
#include "LaunchKit/Targets/AppIcon.h"
#include "LaunchKit/Wrappers/WrapperLayout.h"
#include "Platform/entries/IconTheme.h"
#include "Platform/entries/InstalledApplications.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/Folder.h"
#include "Platform/processes/ParallelLoop.h"

#include <algorithm>
#include <set>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

struct Candidate {
    const Folder* folder;
    fs::path url;
    std::string fileName;
};

std::vector<Folder> opened(const std::vector<fs::path>& dirs) {
    std::vector<Folder> folders;
    for (const fs::path& path : dirs) {
        if (std::optional<Folder> folder = Folder::open(path)) {
            folders.push_back(std::move(*folder));
        }
    }
    return folders;
}

std::vector<Candidate> candidatesIn(std::vector<Folder>& folders) {
    std::vector<Candidate> candidates;
    for (Folder& folder : folders) {
        for (std::string& name : folder.entries()) {
            if (isAppBundleName(name)) {
                candidates.push_back({&folder, folder.path() / name, std::move(name)});
            }
        }
    }
    return candidates;
}

std::optional<InstalledApp> readApp(Candidate& candidate, const EntitlementReader& entitlements) {
    if (candidate.folder->has(configOf(candidate.fileName))) {
        return std::nullopt;
    }
    auto read = AppBundle::read(candidate.url, entitlements);
    if (!read) {
        return std::nullopt;
    }
    return InstalledApp{std::move(candidate.url), bundleFallbackName(candidate.fileName),
                        std::move(read->bundleId)};
}

using FoundApps = std::vector<std::optional<InstalledApp>>;

FoundApps bundlesIn(const std::vector<fs::path>& dirs, const EntitlementReader& entitlements) {
    std::vector<Folder> folders = opened(dirs);
    std::vector<Candidate> candidates = candidatesIn(folders);
    FoundApps found(candidates.size());
    // Most of the time is spent waiting for the code-signing tool.
    forEachIndexWaiting(candidates.size(), [&](std::size_t index) {
        found[index] = readApp(candidates[index], entitlements);
    });
    return found;
}

void addInstalledApplications(FoundApps& found) {
    std::vector<InstalledApplication> installed = installedApplications();
    std::vector<std::string> names;
    names.reserve(installed.size());
    for (const InstalledApplication& application : installed) {
        names.push_back(application.entry.icon);
    }
    auto icons = IconTheme(IconTheme::chosenTheme()).findAll(names);
    for (std::size_t index = 0; index < installed.size(); ++index) {
        InstalledApplication& application = installed[index];
        found.emplace_back(InstalledApp{std::move(application.file),
                                        std::move(application.entry.name),
                                        std::move(application.id), std::move(icons[index])});
    }
}

// Keeps the first of each identifier.
std::vector<InstalledApp> withoutDuplicates(FoundApps found) {
    std::vector<InstalledApp> apps;
    std::set<std::string> seen;
    for (std::optional<InstalledApp>& app : found) {
        if (app && seen.insert(app->bundleId).second) {
            apps.push_back(std::move(*app));
        }
    }
    return apps;
}

} // namespace

std::optional<fs::path> InstalledApp::iconURL() const {
    return themeIcon ? themeIcon : appIconFile(url);
}

std::vector<fs::path> AppCatalog::defaultSearchDirs() {
    return {"/Applications", "/Applications/Utilities", userApplicationsFolder(),
            "/System/Applications"};
}

std::vector<InstalledApp> AppCatalog::scan(const std::vector<fs::path>& dirs,
                                           const EntitlementReader& entitlements) {
    return sortedByName(withoutDuplicates(bundlesIn(dirs, entitlements)), &InstalledApp::name);
}

std::vector<InstalledApp> AppCatalog::scan(const EntitlementReader& entitlements) {
    FoundApps found = bundlesIn(defaultSearchDirs(), entitlements);
    addInstalledApplications(found);
    return sortedByName(withoutDuplicates(std::move(found)), &InstalledApp::name);
}

} // namespace quorvel

std::size_t
std::hash<quorvel::InstalledApp>::operator()(const quorvel::InstalledApp& app) const noexcept {
    const auto combine = [](std::size_t seed, std::size_t value) {
        return seed ^ (value + 0x9e3779b9U + (seed << 6U) + (seed >> 2U));
    };
    const std::hash<std::string> text;
    return combine(combine(std::filesystem::hash_value(app.url), text(app.name)),
                   text(app.bundleId));
}
