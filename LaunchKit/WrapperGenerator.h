#pragma once

#include "Base/Error.h"
#include "LaunchKit/AppBundle.h"
#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/Wrappers/WrapperNotes.h"
#include "Platform/processes/LoadedModule.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace quorvel {

/// Writes wrapper bundles. Stateless; any thread.
class WrapperGenerator {
public:
    struct Options {
        InstanceConfig config{};
        std::filesystem::path runnerBinary{};
        std::optional<std::filesystem::path> customIcon{}; ///< replaces the target's own icon
        bool hideWrapperIcon = false;                      ///< no Dock icon
        /// A wrapper, without links at its path's end, of which a copy gets `config` and the
        /// runner; its icon, notes and everything else in it stay.
        std::optional<std::filesystem::path> original{};
        /// Where the arguments for the target come from. If set, the wrapper gets notes of what its
        /// configuration can't hold.
        std::optional<ArgumentSource> arguments{};
        /// If set, called with the wrapper's path before anything is changed. What it throws is
        /// passed on.
        std::function<void(const std::filesystem::path& wrapper)> beforeWriting{};
        /// Whether the wrapper gets copies of all that the clone runs, from beside the runner.
        bool isSelfContained = modulesBelongToBundles();
    };

    class GenError : public Error {
    public:
        enum class Case { runnerMissing, badTarget };

        /// The runner's file doesn't exist.
        [[nodiscard]] static GenError runnerMissing(const std::filesystem::path& runner);
        /// The target can't be read.
        [[nodiscard]] static GenError badTarget(const std::filesystem::path& target);

        [[nodiscard]] Case kind() const noexcept { return case_; }
        [[nodiscard]] const std::filesystem::path& url() const noexcept { return url_; }

    private:
        GenError(Case kind, const std::string& text, std::filesystem::path url)
            : Error(text),
              case_(kind),
              url_(std::move(url)) {}

        Case case_;
        std::filesystem::path url_;
    };

    /// Writes `directory`/NAME.app, replacing an existing one, and returns its path. At any moment,
    /// either the old wrapper or the new one is there. Throws `GenError`, `ConfigError` (a text
    /// that is not valid UTF-8), `std::invalid_argument` (a text that a property list can't
    /// contain) or `PlatformError`; nothing has changed then.
    [[nodiscard]] std::filesystem::path generate(const std::filesystem::path& directory,
                                                 const Options& options) const;
};

} // namespace quorvel
