#include "LaunchKit/WrapperFactory.h"

#include "Base/PathText.h"
#include "Base/Text.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/Menu/MenuEntries.h"
#include "LaunchKit/RunnerLocator.h"
#include "LaunchKit/Targets/AppIcon.h"
#include "LaunchKit/WrapperGenerator.h"
#include "LaunchKit/Wrappers/WrapperLayout.h"
#include "Platform/files/PlatformError.h"

namespace quorvel {
namespace fs = std::filesystem;
namespace {

InstanceConfig configuration(const WrapperFactory::Request& request, const std::string& name) {
    InstanceConfig config{static_cast<const CloneTarget&>(request),
                          static_cast<const CloneOptions&>(request)};
    config.displayName = name;
    config.bundleId = request.bundleId.value_or(WrapperFactory::defaultBundleId(name));
    config.instanceHome = request.instanceHome.value_or(WrapperFactory::defaultInstanceHome(name));
    config.extraArgs = request.extraArgs.value_or(std::vector<std::string>{});
    if (request.kind == ShortcutKind::app) {
        const fs::path target = WrapperFactory::cloneableTarget(request);
        config.targetAppPath = target.string();
        if (!request.extraArgs) {
            config.extraArgs = WrapperFactory::autoDataDirArgs(target, std::nullopt);
        }
    }
    return config;
}

// Returns the drawing that shows the same as the clone's icon, if there is one.
std::optional<fs::path> drawingFor(const WrapperFactory::Request& request) {
    if (request.kind != ShortcutKind::app || request.iconLabel || request.customIcon ||
        request.original) {
        return std::nullopt;
    }
    auto icon = appIconFile(*request.targetApp);
    return icon && icon->extension() == ".svg" ? icon : std::nullopt;
}

// A clone works without its entry in the menu.
void publish(const WrapperFactory::Request& request, const InstanceRecord& record,
             const WrapperFactory::Warning& warn) {
    try {
        publishInMenu(record, drawingFor(request));
    } catch (const std::exception& error) {
        if (warn) {
            warn("“" + record.config.displayName +
                 "” was made, but it couldn’t be added to the menu: " + error.what());
        }
    }
}

ArgumentSource sourceOfArguments(const WrapperFactory::Request& request) {
    return request.extraArgs || request.kind != ShortcutKind::app ? ArgumentSource::typed
                                                                  : ArgumentSource::engine;
}

std::string nameOf(const WrapperFactory::Request& request) {
    return Text::trimmingWhitespaceAndNewlines(request.displayName);
}

fs::path folderOf(const WrapperFactory::Request& request) {
    return withoutTrailingSlashes(request.outputDir.value_or(WrapperFactory::defaultOutputDir()));
}

} // namespace

// Whether the target is sandboxed changes nothing here, so its signature is not looked at.
fs::path WrapperFactory::cloneableTarget(const Request& request) {
    const auto app =
        request.targetApp ? AppBundle::read(*request.targetApp, noEntitlements) : std::nullopt;
    if (!app) {
        throw FactoryError::badTarget(request.targetApp.value_or("/"));
    }
    if (const auto obstacle = app->obstacle()) {
        throw PlatformError::because(*obstacle, *request.targetApp, "cloned");
    }
    return withoutTrailingSlashes(*request.targetApp);
}

WrapperFactory::FactoryError WrapperFactory::FactoryError::badTarget(const fs::path& target) {
    return {Case::badTarget, unreadableAppText(target, "Not a readable .app: "), target};
}

WrapperFactory::FactoryError WrapperFactory::FactoryError::runnerNotFound() {
    return {Case::runnerNotFound, "Could not locate the quorvel-runner binary to embed."};
}

WrapperFactory::FactoryError WrapperFactory::FactoryError::emptyName() {
    return {Case::emptyName, "The clone needs a non-empty name."};
}

fs::path WrapperFactory::defaultOutputDir() {
    return userApplicationsFolder();
}

std::string WrapperFactory::defaultInstanceHome(std::string_view name) {
    return "~/QuorvelInstances/" + std::string(name);
}

fs::path WrapperFactory::wrapperURL(const Request& request) {
    return quorvel::wrapperPath(folderOf(request), nameOf(request));
}

fs::path WrapperFactory::create(const Request& request, const BeforeWriting& beforeWriting,
                                const Warning& warn) const {
    const std::string name = nameOf(request);
    if (name.empty()) {
        throw FactoryError::emptyName();
    }
    const std::optional<fs::path> runner =
        runnerBinary ? runnerBinary : RunnerLocator::locate(ApplicationFolders::current());
    if (!runner) {
        throw FactoryError::runnerNotFound();
    }
    const WrapperGenerator::Options options{.config = configuration(request, name),
                                            .runnerBinary = *runner,
                                            .customIcon = request.customIcon,
                                            .hideWrapperIcon = request.hideWrapperIcon,
                                            .original = request.original,
                                            .arguments = sourceOfArguments(request),
                                            .beforeWriting = beforeWriting};
    fs::path wrapper = WrapperGenerator().generate(folderOf(request), options);
    publish(request, {wrapper, options.config}, warn);
    return wrapper;
}

AppEngine WrapperFactory::detectEngine(const fs::path& app,
                                       const std::optional<std::string>& bundleId) {
    return quorvel::detectEngine(app, bundleId);
}

bool WrapperFactory::isElectron(const fs::path& app) {
    return quorvel::detectEngine(app) == AppEngine::electron;
}

std::vector<std::string>
WrapperFactory::autoDataDirArgs(const fs::path& app, const std::optional<std::string>& bundleId) {
    return dataDirArgs(quorvel::detectEngine(app, bundleId));
}

std::string WrapperFactory::defaultBundleId(std::string_view name) {
    return "app.quorvel.instance." + idFragment(name);
}

std::string WrapperFactory::idFragment(std::string_view name) {
    return Text::lowerCased(Text::replacingNonAlphanumerics(name, '-'));
}

} // namespace quorvel
