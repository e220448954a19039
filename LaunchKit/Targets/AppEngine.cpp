#include "LaunchKit/Targets/AppEngine.h"

#include "Base/BundleLayout.h"
#include "Base/PathText.h"
#include "Base/Text.h"
#include "LaunchKit/AppBundle.h"
#include "Platform/files/FileSystem.h"

#include <algorithm>
#include <array>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

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
    const auto names = directoryEntries(frameworksOf(app));
    return names && std::any_of(names->begin(), names->end(), [](const std::string& name) {
               return name.ends_with("Framework.framework") &&
                      (name.find("Chromium") != std::string::npos ||
                       name.find("Chrome") != std::string::npos);
           });
}

// Engines embed one another, so the order of the tests decides: every Electron app also contains
// a Chromium framework.
AppEngine classify(const fs::path& app, const std::string& lowerId) {
    if (itemExists(joinAsText(frameworksOf(app), "Electron Framework.framework"))) {
        return AppEngine::electron;
    }
    if (itemExists(joinAsText(contentsOf(app), "Eclipse/eclipse.ini")) ||
        itemExists(executableOf(app, "eclipse"))) {
        return AppEngine::eclipse;
    }
    const auto idContains = [&](std::string_view part) {
        return lowerId.find(part) != std::string::npos;
    };
    if (lowerId.starts_with("org.mozilla") ||
        std::any_of(firefoxRelatives.begin(), firefoxRelatives.end(), idContains) ||
        itemExists(resourceOf(app, "application.ini"))) {
        return AppEngine::firefox;
    }
    const auto isPrefix = [&](std::string_view prefix) { return lowerId.starts_with(prefix); };
    if (std::any_of(chromiumBrowsers.begin(), chromiumBrowsers.end(), isPrefix) ||
        hasChromiumFramework(app)) {
        return AppEngine::chromium;
    }
    return AppEngine::other;
}

AppEngine engineOf(const ResolvedProgram& program) {
    switch (program.engine) {
    case ResolvedProgram::Engine::electron:
        return AppEngine::electron;
    case ResolvedProgram::Engine::chromium:
        return AppEngine::chromium;
    case ResolvedProgram::Engine::firefox:
        return AppEngine::firefox;
    case ResolvedProgram::Engine::eclipse:
        return AppEngine::eclipse;
    case ResolvedProgram::Engine::java:
    case ResolvedProgram::Engine::libreOffice:
    case ResolvedProgram::Engine::other:
        break; // the environment alone keeps their data apart
    }
    return AppEngine::other;
}

} // namespace

AppEngine detectEngine(const fs::path& app, const std::optional<std::string>& bundleId) {
    std::error_code ignored;
    if (!bundleId || !fs::is_directory(app, ignored)) {
        if (const auto read = AppBundle::read(app, noEntitlements)) {
            return detectEngine(*read);
        }
    }
    return classify(app, Text::lowerCased(bundleId.value_or("")));
}

AppEngine detectEngine(const AppBundle& app) {
    return app.desktop ? engineOf(app.desktop->program)
                       : classify(app.url, Text::lowerCased(app.bundleId));
}

std::vector<std::string> dataDirArgs(AppEngine engine, std::string_view home) {
    const auto below = [&](std::string_view name) { return joinAsText(std::string(home), name); };
    switch (engine) {
    case AppEngine::electron:
    case AppEngine::chromium:
        return {"--user-data-dir=" + below("QuorvelData")};
    case AppEngine::firefox:
        return {"-profile", below("FirefoxProfile"), "-no-remote"};
    case AppEngine::eclipse:
        return {"-data", below("workspace")};
    case AppEngine::other:
        break;
    }
    return {};
}

std::vector<std::string> electronArgs(const fs::path& app, std::string_view home) {
    const AppEngine engine = detectEngine(app);
    return engine == AppEngine::electron ? dataDirArgs(engine, home) : std::vector<std::string>{};
}

} // namespace quorvel
