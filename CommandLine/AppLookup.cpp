#include "CommandLine/AppLookup.h"

#include "Base/Text.h"
#include "CommandLine/CommandContext.h"
#include "CommandLine/PathWords.h"
#include "LaunchKit/AppCatalog.h"
#include "Platform/files/FileSystem.h"

#include <algorithm>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

template<typename Predicate>
std::vector<InstalledApp> appsThat(const std::vector<InstalledApp>& apps, Predicate matches) {
    std::vector<InstalledApp> found;
    std::copy_if(apps.begin(), apps.end(), std::back_inserter(found), matches);
    return found;
}

// The identifier comes first, since no two applications share it; then the name as it is written.
std::vector<InstalledApp> appsCalled(const std::string& words) {
    const std::vector<InstalledApp> apps = AppCatalog::scan(noEntitlements);
    auto found = appsThat(apps, [&](const InstalledApp& app) {
        return app.bundleId == words || app.bundleId == words + ".desktop";
    });
    if (found.empty()) {
        found = appsThat(apps, [&](const auto& app) { return app.name == words; });
    }
    if (found.empty()) {
        found = appsThat(apps, [name = Text::lowerCased(words)](const auto& app) {
            return Text::lowerCased(app.name) == name;
        });
    }
    return found;
}

} // namespace

fs::path findApp(const std::string& words) {
    if (isPath(words) || words.find('/') != std::string::npos ||
        AppBundle::read(absoluteFile(words), noEntitlements)) {
        return absoluteFile(words);
    }
    const std::vector<InstalledApp> found = appsCalled(words);
    if (found.size() > 1) {
        std::string message = "Several applications are named “" + words + "”; give a path:";
        for (const InstalledApp& app : found) {
            message += " " + app.url.string();
        }
        throw CommandError(message);
    }
    return found.empty() ? absoluteFile(words) : found.front().url;
}

} // namespace quorvel
