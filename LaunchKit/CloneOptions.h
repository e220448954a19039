#pragma once

#include "Base/Translatable.h"
#include "LaunchKit/IconLabel.h"
#include "LaunchKit/Strategy.h"

#include <array>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What the creator of a clone may choose: shared by the configuration, the request to make a clone
/// and the window's form.
namespace quorvel {

/// The placeholder for a clone's data folder in arguments and environment values.
inline constexpr std::string_view instanceHomePlaceholder = "{{instanceHome}}";

/// What a clone opens.
enum class ShortcutKind { app, web, file, command };

template<>
inline constexpr auto enumNames<ShortcutKind> = namesOfAllCases<ShortcutKind>({
    {ShortcutKind::app, "app"},
    {ShortcutKind::web, "web"},
    {ShortcutKind::file, "file"},
    {ShortcutKind::command, "command"},
});

/// What a clone opens, except for the application of an `app` clone.
struct CloneTarget {
    ShortcutKind kind = ShortcutKind::app;
    std::optional<std::string> url{};
    std::optional<std::string> openPath{};
    std::optional<std::string> commandPath{};
    std::vector<std::string> commandArgs{};
    std::optional<std::string> workingDirectory{};
};

/// What `CloneOptions::links` may be besides a clone.
inline constexpr std::string_view linksDefault = "default";
inline constexpr std::string_view linksInside = "inside";

/// How a clone behaves. A new yes-or-no option is a member here and a row in `cloneSwitches`.
struct CloneOptions {
    Strategy strategy = Strategy::homeOverride;
    std::map<std::string, std::string> environment{};
    std::map<std::string, std::string> infoPlistOverrides{};
    std::optional<IconLabel> iconLabel{};
    /// What opens the links that are clicked in the clone: `linksInside` for the clone itself,
    /// another clone's path or bundle identifier; absent or `linksDefault` for the user's default
    /// browser.
    std::optional<std::string> links{};
    bool registerAsBrowser = false;
    bool openWithPassthrough = false;
    bool menuBarIcon = false;
    bool menuBarIconTemplate = false;
    /// True if a file lacks the key: files older than the key belong to clones that share.
    bool shareUserFolders = true;
};

/// The translations' context of the texts in `cloneSwitches`.
inline constexpr const char* switchContext = "CloneSwitch";

/// A yes-or-no option of clones, with its names in files, commands and the details of a clone.
struct CloneSwitch {
    bool CloneOptions::*member;
    std::string_view key; ///< in `instance.json`
    const char* flag;     ///< of `quorvelctl create`; inverts the default
    const char* help;     ///< the flag's description, to be translated as `switchContext`
    const char* fact;     ///< the row that shows it among a clone's facts, likewise
    bool appsOnly = false;
    bool inDetails = true; ///< whether the window's details show it too

    /// Returns the option's value in `options`.
    [[nodiscard]] constexpr bool valueIn(const CloneOptions& options) const {
        return options.*member;
    }
    [[nodiscard]] bool defaultValue() const { return valueIn(CloneOptions{}); }
};

inline constexpr std::array cloneSwitches{
    CloneSwitch{.member = &CloneOptions::registerAsBrowser,
                .key = "registerAsBrowser",
                .flag = "--browser",
                .help = translatable("CloneSwitch", "Register as a web browser"),
                .fact = translatable("CloneSwitch", "Web browser"),
                .inDetails = false},
    CloneSwitch{.member = &CloneOptions::openWithPassthrough,
                .key = "openWithPassthrough",
                .flag = "--open-with",
                .help = translatable("CloneSwitch", "Open any document with the clone"),
                .fact = translatable("CloneSwitch", "Opens documents"),
                .inDetails = false},
    CloneSwitch{.member = &CloneOptions::menuBarIcon,
                .key = "menuBarIcon",
                .flag = "--menu-bar-icon",
                .help = translatable("CloneSwitch", "Show an icon in the menu bar"),
                .fact = translatable("CloneSwitch", "Menu bar icon"),
                .inDetails = false},
    CloneSwitch{.member = &CloneOptions::menuBarIconTemplate,
                .key = "menuBarIconTemplate",
                .flag = "--menu-bar-template",
                .help = translatable("CloneSwitch", "Draw that icon in one color"),
                .fact = translatable("CloneSwitch", "In one color"),
                .inDetails = false},
    CloneSwitch{.member = &CloneOptions::shareUserFolders,
                .key = "shareUserFolders",
                .flag = "--isolate-folders",
                .help = translatable("CloneSwitch",
                                     "Own Downloads, Documents and Desktop instead of the user's"),
                .fact = translatable("CloneSwitch", "Shares folders"),
                .appsOnly = true,
                .inDetails = false},
};

/// Returns the switches worth showing for a clone of that kind: those that are on, now or by
/// default.
[[nodiscard]] std::vector<CloneSwitch> shownSwitches(ShortcutKind kind,
                                                     const CloneOptions& options);

} // namespace quorvel
