#pragma once

#include "Base/Error.h"
#include "Base/PropertyList.h"
#include "LaunchKit/AppBundle.h"
#include "LaunchKit/InstanceConfig.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace quorvel {

/// Writes wrapper bundles. Stateless; any thread.
class WrapperGenerator {
public:
    struct Options {
        InstanceConfig config{};
        std::filesystem::path runnerBinary{};
        std::optional<std::filesystem::path> customIcon{}; ///< goes before the target's own icon
        bool hideWrapperIcon = false;                      ///< no Dock icon
    };

    class GenError : public Error {
    public:
        enum class Case { runnerMissing, badTarget };

        [[nodiscard]] static GenError runnerMissing(const std::filesystem::path& runner);
        [[nodiscard]] static GenError badTarget(const std::filesystem::path& target);

        [[nodiscard]] Case kind() const noexcept { return case_; }
        [[nodiscard]] const std::filesystem::path& url() const noexcept { return url_; }

    private:
        GenError(Case kind, const std::string& prefix, std::filesystem::path url)
            : Error(prefix + url.string()),
              case_(kind),
              url_(std::move(url)) {}

        Case case_;
        std::filesystem::path url_;
    };

    /// Writes `directory`/NAME.app, replacing what is there, and gives its path. Throws, with
    /// nothing touched, `GenError`, `ConfigError` (a text that is not UTF-8) or
    /// `std::invalid_argument` (a text that a property list can't hold); and `PlatformError`, which
    /// may leave a part of the wrapper behind.
    [[nodiscard]] std::filesystem::path generate(const std::filesystem::path& directory,
                                                 const Options& options) const;

    /// The wrapper's property list. `iconFile` is the icon's name when one was installed.
    [[nodiscard]] static PropertyListDictionary
    infoPlist(const Options& options, const std::optional<std::string>& iconFile);

    /// Throws `std::invalid_argument` when `infoPlist` would hold a text that can't be written.
    static void requireWritableTexts(const InstanceConfig& config);

    /// What a free text means in a property list: a boolean, a whole number, else the text itself.
    [[nodiscard]] static PropertyListValue coercePlistValue(std::string_view text);
};

/// Where `generate` puts the clone of that name: `directory`/`displayName`.app.
[[nodiscard]] std::filesystem::path wrapperURL(const std::filesystem::path& directory,
                                               std::string_view displayName);

} // namespace quorvel
