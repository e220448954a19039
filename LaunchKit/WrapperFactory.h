#pragma once

#include "Base/Error.h"
#include "LaunchKit/AppBundle.h"
#include "LaunchKit/CloneOptions.h"
#include "LaunchKit/Targets/AppEngine.h"

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel {

/// Makes clones from requests. Its only state is the path of the runner; any thread.
class WrapperFactory {
public:
    /// The clone to make. An absent value means the default noted beside it.
    struct Request : CloneTarget, CloneOptions {
        std::string displayName{};                        ///< white space around it is removed
        std::optional<std::filesystem::path> targetApp{}; ///< required for `app`, else ignored
        std::optional<std::string> instanceHome{};        ///< "~/QuorvelInstances/" + name
        std::optional<std::filesystem::path> outputDir{}; ///< `defaultOutputDir()`
        std::optional<std::string> bundleId{};            ///< `defaultBundleId(name)`
        std::optional<std::filesystem::path> customIcon{};
        bool hideWrapperIcon = false;
        /// A wrapper to copy with changes. The copy keeps its icon, whether that is hidden, the
        /// source of its arguments, and what the user put into it.
        std::optional<std::filesystem::path> original{};
        std::optional<std::vector<std::string>>
            extraArgs{}; ///< those that the target's engine needs
    };

    /// A request that can't be carried out.
    class FactoryError : public Error {
    public:
        enum class Case { badTarget, runnerNotFound, emptyName };

        /// The target can't be read as an application.
        [[nodiscard]] static FactoryError badTarget(const std::filesystem::path& target);
        /// The runner to copy into the clone was not found.
        [[nodiscard]] static FactoryError runnerNotFound();
        /// The name is empty or only white space.
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

    /// Without `runner`, each `create` locates it.
    explicit WrapperFactory(std::optional<std::filesystem::path> runner = std::nullopt)
        : runnerBinary(std::move(runner)) {}

    std::optional<std::filesystem::path>
        runnerBinary; ///< copied into clones; if absent, located by each `create`

    /// Returns "~/Applications", expanded.
    [[nodiscard]] static std::filesystem::path defaultOutputDir();

    /// Returns "~/QuorvelInstances/" + `name`, not expanded.
    [[nodiscard]] static std::string defaultInstanceHome(std::string_view name);

    /// Returns the request's target, without a trailing slash. Throws what `create` throws for one
    /// that can't be read or cloned.
    [[nodiscard]] static std::filesystem::path cloneableTarget(const Request& request);

    /// Returns the path at which `create` makes the clone.
    [[nodiscard]] static std::filesystem::path wrapperURL(const Request& request);

    /// Called with the wrapper's path before anything is changed.
    using BeforeWriting = std::function<void(const std::filesystem::path& wrapper)>;

    /// Takes a sentence for the user about what went wrong although the clone was made.
    using Warning = std::function<void(const std::string& sentence)>;

    /// Makes the clone, replacing one of the same name, publishes it in the user's menu, and
    /// returns the wrapper's path. Throws `FactoryError`, `PlatformError` if the target has an
    /// obstacle, or what `WrapperGenerator::generate` or `beforeWriting` throws. If the clone can't
    /// be published, `warn` is called.
    [[nodiscard]] std::filesystem::path create(const Request& request,
                                               const BeforeWriting& beforeWriting = {},
                                               const Warning& warn = {}) const;

    /// Returns the engine that the bundle is built on. Reads the bundle's own identifier
    /// if `bundleId` is absent. Returns `other` for an unreadable bundle.
    [[nodiscard]] static AppEngine detectEngine(const std::filesystem::path& app,
                                                const std::optional<std::string>& bundleId);
    /// Returns whether `detectEngine` finds Electron.
    [[nodiscard]] static bool isElectron(const std::filesystem::path& app);

    /// Returns the arguments that put the engine's data into the instance home.
    [[nodiscard]] static std::vector<std::string>
    autoDataDirArgs(const std::filesystem::path& app, const std::optional<std::string>& bundleId);

    /// Returns "app.quorvel.instance." + `idFragment(name)`.
    [[nodiscard]] static std::string defaultBundleId(std::string_view name);

    /// Returns the name in lower case, with "-" for everything but letters, marks and digits.
    [[nodiscard]] static std::string idFragment(std::string_view name);
};

} // namespace quorvel
