#pragma once

#include "LaunchKit/InstanceConfig.h"

#include <array>
#include <variant>

namespace quorvel {

/// One row for each key of `instance.json`: where its value lives. Reading and writing both walk
/// it.
struct InstanceConfigField {
    using Member = std::variant<
        std::string InstanceConfig::*, bool InstanceConfig::*, ShortcutKind InstanceConfig::*,
        Strategy InstanceConfig::*, std::vector<std::string> InstanceConfig::*,
        std::map<std::string, std::string> InstanceConfig::*,
        std::optional<std::string> InstanceConfig::*, std::optional<IconLabel> InstanceConfig::*>;

    std::string_view key;
    Member member;
    bool required = false;
};

inline constexpr std::array<InstanceConfigField, 20> instanceConfigFields{{
    {"displayName", &InstanceConfig::displayName, true},
    {"bundleId", &InstanceConfig::bundleId, true},
    {"kind", &InstanceConfig::kind},
    {"targetAppPath", &InstanceConfig::targetAppPath},
    {"instanceHome", &InstanceConfig::instanceHome, true},
    {"strategy", &InstanceConfig::strategy},
    {"extraArgs", &InstanceConfig::extraArgs},
    {"environment", &InstanceConfig::environment},
    {"infoPlistOverrides", &InstanceConfig::infoPlistOverrides},
    {"registerAsBrowser", &InstanceConfig::registerAsBrowser},
    {"openWithPassthrough", &InstanceConfig::openWithPassthrough},
    {"iconLabel", &InstanceConfig::iconLabel},
    {"menuBarIcon", &InstanceConfig::menuBarIcon},
    {"menuBarIconTemplate", &InstanceConfig::menuBarIconTemplate},
    {"shareUserFolders", &InstanceConfig::shareUserFolders},
    {"url", &InstanceConfig::url},
    {"openPath", &InstanceConfig::openPath},
    {"commandPath", &InstanceConfig::commandPath},
    {"commandArgs", &InstanceConfig::commandArgs},
    {"workingDirectory", &InstanceConfig::workingDirectory},
}};

} // namespace quorvel
