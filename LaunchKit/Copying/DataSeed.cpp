#include "LaunchKit/Copying/DataSeed.h"

#include "Base/PathText.h"
#include "LaunchKit/AppBundle.h"
#include "LaunchKit/Copying/ElectronName.h"
#include "LaunchKit/Copying/FirefoxProfiles.h"
#include "LaunchKit/Targets/ShippedProfiles.h"
#include "Platform/files/FileSystem.h"
#include "Platform/homes/DataFolders.h"
#include "Platform/homes/UserPaths.h"
#include "Platform/processes/ProcessFamily.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

// A program's name, and a folder of its data.
struct KnownFolder {
    std::string_view program;
    std::string_view folder;
};

// Relative to the home. Those below ".config" are where XDG_CONFIG_HOME says.
constexpr std::array<KnownFolder, 7> firefoxFolders{{
    {"firefox", ".mozilla/firefox"},
    {"firefox", ".config/mozilla/firefox"},
    {"thunderbird", ".thunderbird"},
    {"librewolf", ".librewolf"},
    {"librewolf", ".config/librewolf/librewolf"},
    {"waterfox", ".waterfox"},
    {"waterfox", ".config/waterfox"},
}};

constexpr std::array<KnownFolder, 14> chromiumFolders{{
    {"chromium", ".config/chromium"},
    {"chromium-browser", ".config/chromium"},
    {"google-chrome", ".config/google-chrome"},
    {"google-chrome-stable", ".config/google-chrome"},
    {"google-chrome-beta", ".config/google-chrome-beta"},
    {"google-chrome-unstable", ".config/google-chrome-unstable"},
    {"brave-browser", ".config/BraveSoftware/Brave-Browser"},
    {"brave-browser-stable", ".config/BraveSoftware/Brave-Browser"},
    {"vivaldi", ".config/vivaldi"},
    {"vivaldi-stable", ".config/vivaldi"},
    {"microsoft-edge", ".config/microsoft-edge"},
    {"microsoft-edge-stable", ".config/microsoft-edge"},
    {"opera", ".config/opera"},
    {"opera-stable", ".config/opera"},
}};

std::string quoted(const AppBundle& app) {
    const std::string& name = app.desktop ? app.desktop->entry.name : app.executableName;
    return "“" + (name.empty() ? app.bundleId : name) + "”";
}

DataCopyError unknownPlace(const AppBundle& app) {
    return DataCopyError("It is not known where " + quoted(app) +
                         " keeps its data, so a clone can’t start with it.");
}

DataCopyError noData(const AppBundle& app, const fs::path& place) {
    return DataCopyError(quoted(app) + " has no data at " + place.string() +
                         " that a clone could start with.");
}

// The folders of the user's own session.
class UserFoldersOfSession {
public:
    explicit UserFoldersOfSession(const Environment& session) : session_(session) {}

    // Returns where a path that begins with the usual XDG folder really is.
    [[nodiscard]] fs::path resolved(std::string_view path) const {
        const std::string home = UserPaths::expandTilde("~");
        for (const UserDataFolder& folder : userDataFolders) {
            if (isAtOrBelow(path, folder.usual)) {
                return folder.in(session_, home) +
                       std::string(path.substr(std::string_view(folder.usual).size()));
            }
        }
        return joinAsText(home, path);
    }

private:
    const Environment& session_;
};

bool isFolder(const fs::path& path) {
    std::error_code code;
    return fs::is_directory(path, code) && !isSymbolicLink(path);
}

std::vector<DataPart> firefoxSeed(const AppBundle& app, const UserFoldersOfSession& folders) {
    const ResolvedProgram& program = app.desktop->program;
    std::optional<fs::path> place;
    bool hasProfiles = false;
    for (const KnownFolder& known : firefoxFolders) {
        if (program.remotingName.starts_with(known.program) ||
            program.launcher.filename().native().starts_with(known.program)) {
            fs::path folder = folders.resolved(known.folder);
            hasProfiles = itemExists(joinAsText(folder, "profiles.ini"));
            if (hasProfiles || !place) {
                place = std::move(folder);
            }
        }
        if (hasProfiles) {
            break;
        }
    }
    if (!place) {
        throw unknownPlace(app);
    }
    if (!hasProfiles) {
        throw noData(app, *place);
    }
    const auto profile = defaultFirefoxProfile(*place);
    if (!profile) {
        throw DataCopyError("It can’t be told which profile in " + place->string() + " " +
                            quoted(app) + " opens by default, so a clone can’t start with it.");
    }
    return {{.from = *profile, .to = "FirefoxProfile"}};
}

std::vector<DataPart> chromiumSeed(const AppBundle& app, const UserFoldersOfSession& folders) {
    const std::string launcher = app.desktop->program.launcher.filename();
    const auto known =
        std::find_if(chromiumFolders.begin(), chromiumFolders.end(),
                     [&](const KnownFolder& each) { return each.program == launcher; });
    if (known == chromiumFolders.end()) {
        throw unknownPlace(app);
    }
    return {{.from = folders.resolved(known->folder), .to = "QuorvelData"}};
}

std::vector<DataPart> electronSeed(const AppBundle& app, const UserFoldersOfSession& folders) {
    const auto name = electronName(app.desktop->program.executable.parent_path());
    if (!name) {
        throw unknownPlace(app);
    }
    return {{.from = folders.resolved(".config/" + *name), .to = "QuorvelData"}};
}

// Not every application has locks, and not every instance has a lock.
void requireNotRunning(const AppBundle& app) {
    const ResolvedProgram& program = app.desktop->program;
    auto running = program.interpreter.empty() ? processesOf(program.executable)
                                               : processesOfScript(program.executable);
    const auto ofUser = processesWithHome(UserPaths::expandTilde("~"));
    std::erase_if(running, [&](const ProcessIdentity& process) {
        return std::find(ofUser.begin(), ofUser.end(), process) == ofUser.end();
    });
    if (!running.empty()) {
        throw DataCopyError(quoted(app) + " is running. Close it first, so that its data can be "
                                          "copied.");
    }
}

std::vector<DataPart> knownSeed(const AppBundle& app, const UserFoldersOfSession& folders) {
    const auto profile = ShippedProfiles::find(app.bundleId);
    if (!profile || !profile->dataFolders || profile->dataFolders->empty()) {
        throw unknownPlace(app);
    }
    std::vector<DataPart> parts;
    for (const std::string& folder : *profile->dataFolders) {
        if (isFolder(folders.resolved(folder))) {
            parts.push_back({.from = folders.resolved(folder), .to = folder});
        }
    }
    if (parts.empty()) {
        throw noData(app, folders.resolved(profile->dataFolders->front()));
    }
    return parts;
}

std::vector<DataPart> partsFor(const AppBundle& app, const UserFoldersOfSession& folders) {
    switch (detectEngine(app)) {
    case AppEngine::firefox:
        return firefoxSeed(app, folders);
    case AppEngine::chromium:
        return chromiumSeed(app, folders);
    case AppEngine::electron:
        return electronSeed(app, folders);
    case AppEngine::eclipse:
    case AppEngine::other:
        break;
    }
    return knownSeed(app, folders);
}

void requireKnownPackaging(const AppBundle& app) {
    using Packaging = ResolvedProgram::Packaging;
    if (!app.desktop || app.desktop->program.packaging == Packaging::flatpak ||
        app.desktop->program.packaging == Packaging::snap) {
        throw unknownPlace(app);
    }
}

// Returns the parts, whether the original runs or not. Throws if a folder is missing.
std::vector<DataPart> foldersOf(const AppBundle& app, const Environment& session) {
    const UserFoldersOfSession folders(session);
    std::vector<DataPart> parts = partsFor(app, folders);
    for (const DataPart& part : parts) {
        if (!isFolder(part.from)) {
            throw noData(app, part.from);
        }
    }
    return parts;
}

} // namespace

bool hasSeed(const AppBundle& app, const Environment& session) {
    try {
        requireKnownPackaging(app);
        return !foldersOf(app, session).empty();
    } catch (const DataCopyError&) {
        return false;
    }
}

std::vector<DataPart> seedFor(const WrapperFactory::Request& request, const Environment& session) {
    const auto app = request.kind == ShortcutKind::app && request.targetApp
                         ? AppBundle::read(*request.targetApp, noEntitlements)
                         : std::nullopt;
    if (!app) {
        throw DataCopyError("Only a clone of an application can start with the original’s data.");
    }
    requireKnownPackaging(*app);
    if (request.extraArgs && detectEngine(*app) != AppEngine::other) {
        throw DataCopyError("With arguments of its own, it is not known where the clone keeps its "
                            "data, so it can’t start with the original’s.");
    }
    std::vector<DataPart> parts = foldersOf(*app, session);
    for (DataPart& part : parts) {
        part.requireUnused = [app] { requireNotRunning(*app); };
    }
    requireNotRunning(*app);
    return parts;
}

} // namespace quorvel
