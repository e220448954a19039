#pragma once

#include "Base/Error.h"
#include "LaunchKit/IconLabel.h"
#include "LaunchKit/Strategy.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel {

/// What a clone opens.
enum class ShortcutKind { app, web, file, command };

/// "app", "web", "file" or "command".
[[nodiscard]] std::string_view rawString(ShortcutKind kind);

/// Nothing for any other text.
[[nodiscard]] std::optional<ShortcutKind> shortcutKindFromRawString(std::string_view text);

/// A configuration that can't be read or written as JSON.
class ConfigError : public Error {
public:
    using Error::Error;
};

/// Everything that makes a clone what it is: the contents of its `instance.json`.
struct InstanceConfig {
    std::string displayName{};
    std::string bundleId{}; ///< the wrapper's own
    ShortcutKind kind = ShortcutKind::app;
    std::string targetAppPath{}; ///< the application bundle of an `app` clone, else empty
    std::string instanceHome{};  ///< the clone's data folder; may begin with "~"
    Strategy strategy = Strategy::homeOverride;
    std::vector<std::string> extraArgs{};
    std::map<std::string, std::string> environment{};
    std::map<std::string, std::string> infoPlistOverrides{};
    bool registerAsBrowser = false;
    bool openWithPassthrough = false;
    std::optional<IconLabel> iconLabel{};
    bool menuBarIcon = false;
    bool menuBarIconTemplate = false;
    /// True where a file does not say: files older than the field belong to clones that share.
    bool shareUserFolders = true;
    std::optional<std::string> url{};
    std::optional<std::string> openPath{};
    std::optional<std::string> commandPath{};
    std::vector<std::string> commandArgs{};
    std::optional<std::string> workingDirectory{};

    /// The largest file that is read.
    static constexpr std::size_t maximumFileSize = std::size_t{4} << 20U;

    /// Reads the JSON form, all or nothing; a byte-order mark may lead it. Unknown keys are ignored
    /// whatever they hold, and of a key that stands several times the first counts. Throws
    /// `ConfigError` for malformed JSON, a missing required key, a value of the wrong type or an
    /// unknown enumeration string.
    [[nodiscard]] static InstanceConfig fromJson(std::string json);

    /// The same into a fresh `config`, with `json` as the room to work in: for those who read
    /// thousands. Of no use when it throws.
    static void decode(std::string& json, InstanceConfig& config);

    /// Reads a file; nothing when it can't be read or decoded, is too large or no regular file.
    [[nodiscard]] static std::optional<InstanceConfig> read(const std::string& file);

    /// Pretty-printed, keys sorted, "/" escaped, absent optional fields left out.
    /// Throws `ConfigError` when a text is not UTF-8.
    [[nodiscard]] std::string json() const;

    [[nodiscard]] std::filesystem::path targetAppURL() const { return targetAppPath; }
    /// `instanceHome` with a leading "~" expanded.
    [[nodiscard]] std::string resolvedHome() const;
    /// These three have every "{{instanceHome}}" replaced by `resolvedHome()`, in values only.
    [[nodiscard]] std::vector<std::string> resolvedArgs() const;
    [[nodiscard]] std::map<std::string, std::string> resolvedEnvironment() const;
    [[nodiscard]] std::vector<std::string> resolvedCommandArgs() const;
};

/// The placeholder for a clone's data folder in arguments and environment values.
inline constexpr std::string_view instanceHomePlaceholder = "{{instanceHome}}";

/// `text` with every placeholder replaced by `home`, left to right.
[[nodiscard]] std::string expandingInstanceHome(std::string_view text, std::string_view home);

} // namespace quorvel
