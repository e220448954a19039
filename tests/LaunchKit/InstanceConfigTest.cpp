#include "LaunchKit/InstanceConfig.h"

#include "tests/support/AppBundles.h"
#include "tests/support/TemporaryHome.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <utility>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

const std::string minimal = R"({"displayName":"N","bundleId":"b","instanceHome":"~/I"})";

InstanceConfig fullConfig() {
    InstanceConfig config = minimalConfig("Work \"1\" é");
    config.kind = ShortcutKind::command;
    config.targetAppPath = "/A/B.app";
    config.strategy = Strategy::wrapperIdentity;
    config.extraArgs = {"--a", ""};
    config.environment = {{"B", "2"}, {"A", "1"}};
    config.infoPlistOverrides = {{"K", "yes"}};
    config.registerAsBrowser = true;
    config.openWithPassthrough = true;
    config.iconLabel = IconLabel{"W", "#FF0000", IconLabel::Position::top};
    config.menuBarIcon = true;
    config.menuBarIconTemplate = true;
    config.shareUserFolders = false;
    config.url = "https://example.com/";
    config.openPath = "~/Notes";
    config.commandPath = "/bin/ls";
    config.commandArgs = {"-l"};
    config.workingDirectory = "/";
    return config;
}

TEST(InstanceConfigTest, AMinimalFileHasEveryDefault) {
    const InstanceConfig config = InstanceConfig::fromJson(minimal);
    EXPECT_EQ(config.displayName, "N");
    EXPECT_EQ(config.bundleId, "b");
    EXPECT_EQ(config.instanceHome, "~/I");
    EXPECT_EQ(config.kind, ShortcutKind::app);
    EXPECT_EQ(config.targetAppPath, "");
    EXPECT_EQ(config.strategy, Strategy::homeOverride);
    EXPECT_TRUE(config.extraArgs.empty());
    EXPECT_TRUE(config.environment.empty());
    EXPECT_TRUE(config.infoPlistOverrides.empty());
    EXPECT_FALSE(config.registerAsBrowser);
    EXPECT_FALSE(config.openWithPassthrough);
    EXPECT_FALSE(config.menuBarIcon);
    EXPECT_FALSE(config.menuBarIconTemplate);
    EXPECT_TRUE(config.shareUserFolders);
    EXPECT_TRUE(config.commandArgs.empty());
    EXPECT_EQ(config.iconLabel, std::nullopt);
    EXPECT_EQ(config.url, std::nullopt);
    EXPECT_EQ(config.openPath, std::nullopt);
    EXPECT_EQ(config.commandPath, std::nullopt);
    EXPECT_EQ(config.workingDirectory, std::nullopt);
}

TEST(InstanceConfigTest, AMinimalFileIsWrittenWithItsFifteenKeysSorted) {
    EXPECT_EQ(InstanceConfig::fromJson(minimal).json(), R"({
  "bundleId": "b",
  "commandArgs": [],
  "displayName": "N",
  "environment": {},
  "extraArgs": [],
  "infoPlistOverrides": {},
  "instanceHome": "~\/I",
  "kind": "app",
  "menuBarIcon": false,
  "menuBarIconTemplate": false,
  "openWithPassthrough": false,
  "registerAsBrowser": false,
  "shareUserFolders": true,
  "strategy": "home-override",
  "targetAppPath": ""
})");
}

TEST(InstanceConfigTest, WhatOpensLinksIsAnyTextAndWrittenIfThereIsOne) {
    const auto with = [](const std::string& value) {
        return InstanceConfig::fromJson(
            R"({"displayName": "N", "bundleId": "b", "instanceHome": "/h", "links": )" + value +
            "}");
    };
    EXPECT_EQ(with("null").links, std::nullopt);
    for (const char* text : {"default", "inside", "/Apps/Browser.app", "a.clone.that.is.gone"}) {
        const InstanceConfig config = with("\"" + std::string(text) + "\"");
        EXPECT_EQ(config.links, text);
        EXPECT_EQ(InstanceConfig::fromJson(config.json()).links, text);
    }
    EXPECT_THROW((void)with("true"), ConfigError);
    EXPECT_EQ(with("null").json().find("links"), std::string::npos);
}

TEST(InstanceConfigTest, AFullFileIsWrittenWithAllKeysSorted) {
    EXPECT_EQ(fullConfig().json(), R"({
  "bundleId": "app.quorvel.instance.test",
  "commandArgs": [
    "-l"
  ],
  "commandPath": "\/bin\/ls",
  "displayName": "Work \"1\" é",
  "environment": {
    "A": "1",
    "B": "2"
  },
  "extraArgs": [
    "--a",
    ""
  ],
  "iconLabel": {
    "colorHex": "#FF0000",
    "position": "top",
    "text": "W"
  },
  "infoPlistOverrides": {
    "K": "yes"
  },
  "instanceHome": "~\/QuorvelInstances\/Work \"1\" é",
  "kind": "command",
  "menuBarIcon": true,
  "menuBarIconTemplate": true,
  "openPath": "~\/Notes",
  "openWithPassthrough": true,
  "registerAsBrowser": true,
  "shareUserFolders": false,
  "strategy": "wrapper-identity",
  "targetAppPath": "\/A\/B.app",
  "url": "https:\/\/example.com\/",
  "workingDirectory": "\/"
})");
}

TEST(InstanceConfigTest, WhatIsWrittenIsReadBackTheSame) {
    const InstanceConfig config = InstanceConfig::fromJson(fullConfig().json());
    EXPECT_EQ(config.json(), fullConfig().json());
    EXPECT_EQ(config.displayName, "Work \"1\" é");
    EXPECT_EQ(config.url, "https://example.com/");
    EXPECT_EQ(config.iconLabel, fullConfig().iconLabel);
    EXPECT_EQ(config.environment, fullConfig().environment);
}

TEST(InstanceConfigTest, TextOfAnyKindSurvivesWritingAndReading) {
    InstanceConfig config = minimalConfig();
    config.displayName = "line\nbreak \t \x01 \\ / \" ' <b> 😀";
    config.displayName.push_back('\0');
    config.environment = {{"/key/", "//"}, {"", "\\/"}};
    const InstanceConfig again = InstanceConfig::fromJson(config.json());
    EXPECT_EQ(again.displayName, config.displayName);
    EXPECT_EQ(again.environment, config.environment);
}

TEST(InstanceConfigTest, TextThatIsNotUtf8CantBeWritten) {
    InstanceConfig config = minimalConfig();
    config.extraArgs = {"\xFF"};
    EXPECT_THROW((void)config.json(), ConfigError);
    config.extraArgs.clear();
    config.environment = {{"\xE9", ""}};
    EXPECT_THROW((void)config.json(), ConfigError);
}

TEST(InstanceConfigTest, TheHomesTildeIsTheUsersHome) {
    const ScopedEnvironment fixed("CFFIXED_USER_HOME", "/Users/u");
    InstanceConfig config = minimalConfig();
    config.instanceHome = "~/I";
    EXPECT_EQ(config.resolvedHome(), "/Users/u/I");
    config.instanceHome = "/abs/~";
    EXPECT_EQ(config.resolvedHome(), "/abs/~");
}

TEST(InstanceConfigTest, EveryPlaceholderBecomesTheResolvedHome) {
    const ScopedEnvironment fixed("CFFIXED_USER_HOME", "/Users/u");
    InstanceConfig config = minimalConfig();
    config.instanceHome = "~/I";
    config.extraArgs = {"--data={{instanceHome}}/d",
                        "{{instanceHome}}{{instanceHome}}",
                        "~/file",
                        "",
                        "{{instancehome}}",
                        "{{{instanceHome}}}",
                        "{{instanceHome"};
    config.commandArgs = {"{{instanceHome}}"};
    config.environment = {{"{{instanceHome}}", "{{instanceHome}}/cache"}, {"T", "~"}};
    EXPECT_THAT(config.resolvedArgs(),
                ElementsAre("--data=/Users/u/I/d", "/Users/u/I/Users/u/I", "~/file", "",
                            "{{instancehome}}", "{/Users/u/I}", "{{instanceHome"));
    EXPECT_THAT(config.resolvedCommandArgs(), ElementsAre("/Users/u/I"));
    EXPECT_EQ(
        config.resolvedEnvironment(),
        (std::map<std::string, std::string>{{"T", "~"}, {"{{instanceHome}}", "/Users/u/I/cache"}}));
}

TEST(InstanceConfigTest, AHomeThatContainsThePlaceholderIsInsertedOnce) {
    EXPECT_EQ(expandingInstanceHome("{{instanceHome}}!", "/{{instanceHome}}"),
              "/{{instanceHome}}!");
    EXPECT_EQ(expandingInstanceHome("", "/h"), "");
}

TEST(InstanceConfigTest, TheTargetsPathIsNotExpanded) {
    InstanceConfig config = minimalConfig();
    config.targetAppPath = "~/A.app";
    EXPECT_EQ(config.targetAppURL(), "~/A.app");
}

// Not read from `cloneSwitches`, in which two rows could have each other's key.
TEST(InstanceConfigTest, EachKeyIsThatOfItsOwnSwitch) {
    constexpr std::array switches{
        std::pair("registerAsBrowser", &CloneOptions::registerAsBrowser),
        std::pair("openWithPassthrough", &CloneOptions::openWithPassthrough),
        std::pair("menuBarIcon", &CloneOptions::menuBarIcon),
        std::pair("menuBarIconTemplate", &CloneOptions::menuBarIconTemplate),
        std::pair("shareUserFolders", &CloneOptions::shareUserFolders),
    };
    ASSERT_EQ(switches.size(), cloneSwitches.size());
    for (const auto& [set, member] : switches) {
        std::string json = minimal.substr(0, minimal.size() - 1);
        for (const auto& [key, unused] : switches) {
            json.append(",\"").append(key).append(key == set ? "\":true" : "\":false");
        }
        const InstanceConfig config = InstanceConfig::fromJson(json + "}");
        const std::string written = config.json();
        for (const auto& [key, other] : switches) {
            EXPECT_EQ(config.*other, other == member) << set << " " << key;
            EXPECT_THAT(written, HasSubstr(std::string(key) +
                                           "\": " + (other == member ? "true" : "false")));
        }
    }
}

TEST(InstanceConfigTest, EachSwitchHasAKeyOfItsOwn) {
    for (const CloneSwitch& set : cloneSwitches) {
        InstanceConfig config;
        config.*set.member = !set.defaultValue();
        const std::string json = config.json();
        const InstanceConfig back = InstanceConfig::fromJson(json);
        for (const CloneSwitch& each : cloneSwitches) {
            const bool expected = each.valueIn(config);
            EXPECT_NE(
                json.find("\"" + std::string(each.key) + "\": " + (expected ? "true" : "false")),
                std::string::npos)
                << json;
            EXPECT_EQ(each.valueIn(back), expected) << each.key;
        }
    }
}

} // namespace
} // namespace quorvel
