#include "LaunchKit/Targets/ShippedProfiles.h"

#include "LaunchKit/AppBundle.h"
#include "LaunchKit/Targets/NoSessionBus.h"
#include "Platform/entries/EntryFolders.h"
#include "Platform/files/FileReading.h"

namespace quorvel::ShippedProfiles {
namespace fs = std::filesystem;
namespace {

constexpr std::size_t maximumFileSize = std::size_t{64} << 10U;

constexpr std::string_view entryEnding = ".desktop";

std::string withoutEnding(std::string id) {
    if (id.ends_with(entryEnding)) {
        id.resize(id.size() - entryEnding.size());
    }
    return id;
}

// What the bus can start has a name there, by which a second start finds the first.
bool isStartedByBus(const AppBundle& app) {
    return app.desktop->entry.dbusActivatable ||
           (app.bundleId.ends_with(entryEnding) && hasBusService(withoutEnding(app.bundleId)));
}

// An identifier comes from a file's name or a bundle, so it may be anything.
std::optional<std::string> fileNameFor(const std::string& bundleId) {
    const std::string name = withoutEnding(bundleId);
    if (name.empty() || name.find('/') != std::string::npos ||
        name.find('\0') != std::string::npos) {
        return std::nullopt;
    }
    return name + ".json";
}

std::optional<AppProfile> readProfile(const fs::path& file) {
    const auto json = readFile(file, maximumFileSize);
    try {
        return json ? std::optional(AppProfile::fromJson(*json)) : std::nullopt;
    } catch (const ProfileError&) {
        return std::nullopt;
    }
}

} // namespace

std::vector<fs::path> folders(const ApplicationFolders& application) {
    std::vector<fs::path> places;
    if (application.resources) {
        places.push_back(*application.resources / "profiles");
    }
    if (application.executables) {
        places.push_back(application.executables->parent_path() / "share/quorvel/profiles");
    }
    return places;
}

std::optional<AppProfile> find(const std::string& bundleId, const std::vector<fs::path>& places) {
    const auto name = fileNameFor(bundleId);
    for (const fs::path& place : name ? places : std::vector<fs::path>{}) {
        auto profile = readProfile(place / *name);
        if (profile && profile->bundleId == bundleId) {
            return profile;
        }
    }
    return std::nullopt;
}

std::map<std::string, std::string> suggestedEnvironment(const AppBundle& app) {
    if (const auto profile = find(app.bundleId)) {
        return profile->environment.value_or(std::map<std::string, std::string>{});
    }
    // A Flatpak would lose its portals, and with them its dialogs for files.
    if (app.desktop && app.desktop->program.packaging != ResolvedProgram::Packaging::flatpak &&
        isStartedByBus(app)) {
        return {{sessionBusVariable, noSessionBus}};
    }
    return {};
}

} // namespace quorvel::ShippedProfiles
