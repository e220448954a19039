#include "Base/Text.h"
#include "LaunchKit/WrapperFactory.h"
#include "Platform/files/FileSystem.h"

#include <algorithm>
#include <array>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

using AppEngine = WrapperFactory::AppEngine;

constexpr std::array<std::string_view, 7> chromiumBrowsers{
    "com.google.chrome",
    "com.brave.browser",
    "com.microsoft.edgemac",
    "com.vivaldi.vivaldi",
    "com.operasoftware.opera",
    "org.chromium.chromium",
    "ru.yandex.desktop.yandex-browser",
};

constexpr std::array<std::string_view, 3> firefoxRelatives{"torbrowser", "librewolf", "waterfox"};

bool hasChromiumFramework(const fs::path& app) {
    const auto names = directoryEntries(app / "Contents" / "Frameworks");
    return names && std::any_of(names->begin(), names->end(), [](const std::string& name) {
               return name.ends_with("Framework.framework") &&
                      (name.find("Chromium") != std::string::npos ||
                       name.find("Chrome") != std::string::npos);
           });
}

// Engines embed one another, so the order of the tests decides: every Electron app also ships a
// Chromium framework.
AppEngine classify(const fs::path& app, const std::string& lowerId) {
    const auto holds = [&](const char* relative) { return itemExists(app / relative); };
    if (holds("Contents/Frameworks/Electron Framework.framework")) {
        return AppEngine::electron;
    }
    if (holds("Contents/Eclipse/eclipse.ini") || holds("Contents/MacOS/eclipse")) {
        return AppEngine::eclipse;
    }
    const auto idContains = [&](std::string_view part) {
        return lowerId.find(part) != std::string::npos;
    };
    if (lowerId.starts_with("org.mozilla") ||
        std::any_of(firefoxRelatives.begin(), firefoxRelatives.end(), idContains) ||
        holds("Contents/Resources/application.ini")) {
        return AppEngine::firefox;
    }
    const auto isPrefix = [&](std::string_view prefix) { return lowerId.starts_with(prefix); };
    if (std::any_of(chromiumBrowsers.begin(), chromiumBrowsers.end(), isPrefix) ||
        hasChromiumFramework(app)) {
        return AppEngine::chromium;
    }
    return AppEngine::other;
}

std::vector<std::string> dataDirArgs(AppEngine engine) {
    switch (engine) {
    case AppEngine::electron:
    case AppEngine::chromium:
        return {"--user-data-dir={{instanceHome}}/QuorvelData"};
    case AppEngine::firefox:
        return {"-profile", "{{instanceHome}}/FirefoxProfile", "-no-remote"};
    case AppEngine::eclipse:
        return {"-data", "{{instanceHome}}/workspace"};
    case AppEngine::other:
        break;
    }
    return {};
}

std::string identifierOf(const fs::path& app) {
    const auto bundle = AppBundle::read(app, noEntitlements);
    return bundle ? bundle->bundleId : std::string{};
}

} // namespace

AppEngine WrapperFactory::detectEngine(const fs::path& app,
                                       const std::optional<std::string>& bundleId) {
    return classify(app, Text::lowerCased(bundleId ? *bundleId : identifierOf(app)));
}

bool WrapperFactory::isElectron(const fs::path& app) {
    return detectEngine(app, std::nullopt) == AppEngine::electron;
}

std::vector<std::string>
WrapperFactory::autoDataDirArgs(const fs::path& app, const std::optional<std::string>& bundleId) {
    return dataDirArgs(detectEngine(app, bundleId));
}

std::string WrapperFactory::defaultBundleId(std::string_view name) {
    return "app.quorvel.instance." + idFragment(name);
}

std::string WrapperFactory::idFragment(std::string_view name) {
    return Text::lowerCased(Text::replacingNonAlphanumerics(name, '-'));
}

} // namespace quorvel
