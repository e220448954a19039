#include "Platform/watching/DataPlaces.h"

#include "Base/PathText.h"
#include "Platform/files/FileReading.h"
#include "Platform/files/FileSystem.h"
#include "Platform/processes/FolderVariable.h"
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
    const std::string config = folderVariable(session, "XDG_CONFIG_HOME", inHome(".config"));
    return {
        {.folder = joinAsText(config, "dconf"), .kind = settings, .isShared = true},
        {.folder = inHome(".var/app"), .kind = containers},
        {.folder = inHome("snap"), .kind = containers},
        {.folder = config},
        {.folder = folderVariable(session, "XDG_DATA_HOME", inHome(".local/share"))},
        {.folder = folderVariable(session, "XDG_STATE_HOME", inHome(".local/state"))},
        {.folder = folderVariable(session, "XDG_CACHE_HOME", inHome(".cache"))},
        // Applications' own folders lie one level deeper than in the others: ".mozilla/firefox".
        {.folder = home, .levels = 2, .hiddenOnly = true},
    };
}

} // namespace quorvel
