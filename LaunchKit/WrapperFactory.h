#pragma once

#include "Base/Error.h"
#include "LaunchKit/AppBundle.h"
#include "LaunchKit/AppEngine.h"
#include "LaunchKit/InstanceConfig.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel {

/// Turns a request into a clone on disk. Stateless but for the runner it was given; any thread.
class WrapperFactory {
public:
    /// What to make. An absent value means the default that stands beside it.
    struct Request {
        ShortcutKind kind = ShortcutKind::app;
        std::optional<std::filesystem::path> targetApp{}; ///< required for `app`, else ignored
        std::string displayName{};                        ///< white space around it is removed
        std::optional<std::string> url{};
        std::optional<std::string> openPath{};
        std::optional<std::string> commandPath{};
        std::vector<std::string> commandArgs{};
        std::optional<std::string> workingDirectory{};
        std::optional<std::string> instanceHome{};        ///< "~/QuorvelInstances/" + name
        std::optional<std::filesystem::path> outputDir{}; ///< `defaultOutputDir()`
        std::optional<std::string> bundleId{};            ///< `defaultBundleId(name)`
        Strategy strategy = Strategy::homeOverride;
        std::optional<std::filesystem::path> customIcon{};
        bool hideWrapperIcon = false;
        std::optional<std::vector<std::string>> extraArgs{}; ///< what the target's engine needs
        std::map<std::string, std::string> environment{};
        std::map<std::string, std::string> infoPlistOverrides{};
        bool registerAsBrowser = false;
        bool openWithPassthrough = false;
        std::optional<IconLabel> iconLabel{};
        bool menuBarIcon = false;
        bool menuBarIconTemplate = false;
        bool shareUserFolders = true;
    };

    class FactoryError : public Error {
    public:
        enum class Case { badTarget, runnerNotFound, emptyName };

        [[nodiscard]] static FactoryError badTarget(const std::filesystem::path& target);
        [[nodiscard]] static FactoryError runnerNotFound();
        [[nodiscard]] static FactoryError emptyName();

        [[nodiscard]] Case kind() const noexcept { return case_; }
        /// The target of `badTarget`, else empty.
        [[nodiscard]] const std::filesystem::path& url() const noexcept { return url_; }

    private:
        FactoryError(Case kind, const std::string& text, std::filesystem::path url = {})
            : Error(text),
              case_(kind),
              url_(std::move(url)) {}

        Case case_;
        std::filesystem::path url_;
    };

    using AppEngine = quorvel::AppEngine;

    /// Without a runner, it is located at each `create`.
    explicit WrapperFactory(std::optional<std::filesystem::path> runner = std::nullopt)
        : runnerBinary(std::move(runner)) {}

    std::optional<std::filesystem::path> runnerBinary;

    /// "~/Applications", expanded.
    [[nodiscard]] static std::filesystem::path defaultOutputDir();

    /// "~/QuorvelInstances/" + `name`, not expanded.
    [[nodiscard]] static std::string defaultInstanceHome(std::string_view name);

    /// Where `create` puts the clone: the folder and the name that the request comes to.
    [[nodiscard]] static std::filesystem::path wrapperURL(const Request& request);

    /// Makes the clone, replacing one of the same name, and gives the wrapper's path. Throws
    /// `FactoryError`, or what `WrapperGenerator::generate` throws.
    [[nodiscard]] std::filesystem::path create(const Request& request) const;

    /// Without `bundleId`, the bundle's own is read. Unreadable bundles are `other`.
    [[nodiscard]] static AppEngine detectEngine(const std::filesystem::path& app,
                                                const std::optional<std::string>& bundleId);
    /// Returns whether `detectEngine` finds Electron.
    [[nodiscard]] static bool isElectron(const std::filesystem::path& app);

    /// The arguments that put the engine's data into the instance home.
    [[nodiscard]] static std::vector<std::string>
    autoDataDirArgs(const std::filesystem::path& app, const std::optional<std::string>& bundleId);

    /// "app.quorvel.instance." + `idFragment(name)`.
    [[nodiscard]] static std::string defaultBundleId(std::string_view name);

    /// Lower-cased, with "-" for everything that is no letter, mark or digit.
    [[nodiscard]] static std::string idFragment(std::string_view name);
};

} // namespace quorvel
