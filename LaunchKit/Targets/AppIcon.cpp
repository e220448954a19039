#include "LaunchKit/Targets/AppIcon.h"

#include "Platform/entries/IconTheme.h"

namespace quorvel {
namespace fs = std::filesystem;

std::optional<fs::path> appIconFile(const AppBundle& app) {
    if (!app.desktop) {
        return bundleIconFile(app.url);
    }
    return IconTheme(IconTheme::chosenTheme()).find(app.desktop->entry.icon);
}

std::optional<fs::path> appIconFile(const fs::path& url) {
    if (auto icon = bundleIconFile(url)) {
        return icon;
    }
    const auto app = AppBundle::read(url, noEntitlements);
    return app && app->desktop ? appIconFile(*app) : std::nullopt;
}

} // namespace quorvel
