#include "Platform/watching/DataPlaces.h"

#include "Base/PathText.h"
#include "Platform/files/FileReading.h"
#include "Platform/files/FileSystem.h"
#include "Platform/homes/DataFolders.h"
#include "Platform/watching/DconfDatabase_linux.h"

namespace quorvel {

std::optional<Settings> sharedSettings(const DataPlace& place) {
    constexpr std::size_t limit = std::size_t{4} << 20U;
    const std::string database = joinAsText(place.folder, "user");
    if (!itemExists(database)) {
        return Settings();
    }
    const auto bytes = readFile(database, limit);
    return bytes ? dconfSettings(*bytes) : std::nullopt;
}

std::vector<DataPlace> dataPlaces(const std::string& home, const Environment& session) {
    using enum DataPlace::Kind;
    const auto inHome = [&](const char* name) { return joinAsText(home, name); };
    const std::string config = userDataFolders.front().in(session, home);
    std::vector<DataPlace> places{
        {.folder = joinAsText(config, "dconf"), .kind = settings, .isShared = true},
        {.folder = inHome(".var/app"), .kind = containers},
        {.folder = inHome("snap"), .kind = containers},
    };
    for (const UserDataFolder& folder : userDataFolders) {
        places.push_back({.folder = folder.in(session, home)});
    }
    // Applications' own folders lie one level deeper than in the others: ".mozilla/firefox".
    places.push_back({.folder = home, .levels = 2, .hiddenOnly = true});
    return places;
}

} // namespace quorvel
