// What is no configuration, and above all what was made to harm: simply no clone.
#include "LaunchKit/InstanceConfig.h"

#include "tests/support/TemporaryHome.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

// A valid file but for these members.
std::string with(const std::string& members) {
    return R"({"displayName":"N","bundleId":"b","instanceHome":"~/I",)" + members + "}";
}

std::optional<InstanceConfig> decoded(const std::string& json) {
    try {
        return InstanceConfig::fromJson(json);
    } catch (const ConfigError& error) {
        EXPECT_FALSE(error.description().empty());
        return std::nullopt;
    }
}

std::string repeated(std::string_view text, std::size_t count) {
    std::string result;
    for (std::size_t index = 0; index < count; ++index) {
        result.append(text);
    }
    return result;
}

TEST(InstanceConfigReader, TheThreeRequiredKeysAreRequired) {
    EXPECT_FALSE(decoded(R"({"bundleId":"b","instanceHome":"h"})"));
    EXPECT_FALSE(decoded(R"({"displayName":"N","instanceHome":"h"})"));
    EXPECT_FALSE(decoded(R"({"displayName":"N","bundleId":"b"})"));
    EXPECT_FALSE(decoded(R"({"displayName":null,"bundleId":"b","instanceHome":"h"})"));
    EXPECT_FALSE(decoded("{}"));
    EXPECT_TRUE(decoded(R"({"displayName":"","bundleId":"","instanceHome":""})"));
}

TEST(InstanceConfigReader, AFaultInTheTextIsNamed) {
    const auto failure = [](const std::string& json) -> std::string {
        try {
            (void)InstanceConfig::fromJson(json);
        } catch (const ConfigError& error) {
            return error.description();
        }
        return "no error";
    };
    const std::string start = "The configuration is not valid JSON: ";
    EXPECT_EQ(failure(with(R"("url":"x")") + std::string(1, '\0') + "more"),
              start + "It holds a NUL byte.");
    EXPECT_EQ(failure(with(R"("url":"x")") + std::string(1, '\0')), start + "It holds a NUL byte.");
    EXPECT_EQ(failure(with(R"("url":"x")") + "more"),
              start + "The document root must not be followed by other values.");
}

TEST(InstanceConfigReader, NullMeansTheDefault) {
    for (const char* key : {"kind", "targetAppPath", "strategy", "extraArgs", "environment",
                            "infoPlistOverrides", "registerAsBrowser", "openWithPassthrough",
                            "iconLabel", "menuBarIcon", "menuBarIconTemplate", "shareUserFolders",
                            "url", "openPath", "commandPath", "commandArgs", "workingDirectory"}) {
        const auto config = decoded(with(std::string("\"").append(key).append("\":null")));
        ASSERT_TRUE(config) << key;
        EXPECT_TRUE(config->shareUserFolders);
        EXPECT_EQ(config->iconLabel, std::nullopt);
        EXPECT_EQ(config->kind, ShortcutKind::app);
    }
}

TEST(InstanceConfigReader, SharingIsOffOnlyWhenTheFileSaysSo) {
    EXPECT_FALSE(decoded(with(R"("shareUserFolders":false)"))->shareUserFolders);
    EXPECT_TRUE(decoded(with(R"("shareUserFolders":true)"))->shareUserFolders);
}

TEST(InstanceConfigReader, CompletenessForAKindIsNotItsBusiness) {
    const auto config = decoded(with(R"("kind":"command")"));
    ASSERT_TRUE(config);
    EXPECT_EQ(config->kind, ShortcutKind::command);
    EXPECT_EQ(config->commandPath, std::nullopt);
}

TEST(InstanceConfigReader, UnknownNamesAreNoValues) {
    EXPECT_FALSE(decoded(with(R"("strategy":"home_override")")));
    EXPECT_FALSE(decoded(with(R"("strategy":"")")));
    EXPECT_FALSE(decoded(with(R"("kind":"App")")));
    EXPECT_FALSE(decoded(with(R"("iconLabel":{"text":"a","colorHex":"b","position":"left"})")));
}

TEST(InstanceConfigReader, ALabelIsWholeOrTheFileIsNone) {
    EXPECT_TRUE(decoded(with(R"("iconLabel":{"text":"a","colorHex":"b","position":"top"})")));
    EXPECT_TRUE(
        decoded(with(R"("iconLabel":{"x":[{}],"text":"a","colorHex":"b","position":"top"})")));
    EXPECT_FALSE(decoded(with(R"("iconLabel":{"text":"a","colorHex":"b"})")));
    EXPECT_FALSE(decoded(with(R"("iconLabel":{"text":"a","position":"top"})")));
    EXPECT_FALSE(decoded(with(R"("iconLabel":{"colorHex":"b","position":"top"})")));
    EXPECT_FALSE(decoded(with(R"("iconLabel":{"text":null,"colorHex":"b","position":"top"})")));
    EXPECT_FALSE(decoded(with(R"("iconLabel":{"text":1,"colorHex":"b","position":"top"})")));
    EXPECT_FALSE(
        decoded(with(R"("iconLabel":{"text":"a","text":"a","colorHex":"b","position":"top"})")));
    EXPECT_FALSE(decoded(with(R"("iconLabel":{})")));
    EXPECT_FALSE(decoded(with(R"("iconLabel":"a")")));
}

TEST(InstanceConfigReader, AValueOfTheWrongTypeIsNoFallback) {
    for (const char* members : {R"("url":1)",
                                R"("url":["a"])",
                                R"("targetAppPath":true)",
                                R"("kind":0)",
                                R"("registerAsBrowser":"true")",
                                R"("registerAsBrowser":1)",
                                R"("menuBarIcon":[])",
                                R"("extraArgs":"a")",
                                R"("extraArgs":["a",1])",
                                R"("extraArgs":[null])",
                                R"("extraArgs":[["a"]])",
                                R"("extraArgs":{"a":"b"})",
                                R"("environment":["a"])",
                                R"("environment":{"a":1})",
                                R"("environment":{"a":null})",
                                R"("environment":{"a":{"b":"c"}})",
                                R"("commandArgs":[{}])",
                                R"("iconLabel":[])",
                                R"("strategy":{})",
                                R"("workingDirectory":false)"}) {
        EXPECT_FALSE(decoded(with(members))) << members;
    }
    EXPECT_FALSE(decoded(R"({"displayName":1,"bundleId":"b","instanceHome":"h"})"));
}

TEST(InstanceConfigReader, KeysThatItDoesNotKnowAreIgnored) {
    const auto config = decoded(with(
        R"("x":1,"y":{"url":"no","deep":[[{"kind":[]}],null]},"z":[],"url":"yes","DisplayName":7)"));
    ASSERT_TRUE(config);
    EXPECT_EQ(config->url, "yes");
    EXPECT_EQ(config->displayName, "N");
}

TEST(InstanceConfigReader, OnlyAnObjectIsAConfiguration) {
    for (const char* json : {"", " ", "[]", "null", "1", "\"text\"", "true", "{", "}", "[{}]",
                             "{\"displayName\"", "nonsense", "\xEF\xBB\xBF"}) {
        EXPECT_FALSE(decoded(json)) << json;
    }
}

TEST(InstanceConfigReader, NothingMayStandBehindTheObject) {
    EXPECT_FALSE(decoded(with("\"url\":\"a\"") + "x"));
    EXPECT_FALSE(decoded(with("\"url\":\"a\"") + "{}"));
    EXPECT_TRUE(decoded(with("\"url\":\"a\"") + "\n\n"));
}

TEST(InstanceConfigReader, EveryTruncationIsNone) {
    const std::string whole =
        with(R"("iconLabel":{"text":"a","colorHex":"b","position":"top"},"extraArgs":["a"])");
    for (std::size_t length = 0; length < whole.size(); ++length) {
        EXPECT_FALSE(decoded(whole.substr(0, length))) << length;
    }
}

TEST(InstanceConfigReader, AKeyThatStandsTwiceIsRefused) {
    EXPECT_FALSE(decoded(with(R"("url":"a","url":"a")")));
    EXPECT_FALSE(decoded(with(R"("displayName":"other")")));
    EXPECT_FALSE(decoded(with(R"("environment":{"A":"1","A":"2"})")));
    EXPECT_FALSE(decoded(with(R"("url":null,"url":"a")")));
}

TEST(InstanceConfigReader, NumbersOutOfRangeAreNone) {
    for (const char* number :
         {"1e999", "-1e999", "99999999999999999999999999", "1e", "0x10", "NaN", "01"}) {
        EXPECT_FALSE(decoded(with("\"menuBarIcon\":" + std::string(number)))) << number;
    }
    EXPECT_FALSE(decoded(with("\"unknown\":1e999")));
}

TEST(InstanceConfigReader, TextThatIsNotUtf8IsNone) {
    EXPECT_FALSE(decoded(with("\"url\":\"\xFF\"")));
    EXPECT_FALSE(decoded(with("\"url\":\"caf\xE9\"")));
    EXPECT_FALSE(decoded(with("\"\xC0\xAF\":\"a\"")));
    EXPECT_FALSE(decoded(with("\"unknown\":\"\xED\xA0\x80\"")));
}

TEST(InstanceConfigReader, LoneSurrogatesAreNone) {
    EXPECT_FALSE(decoded(with(R"("url":"\ud800")")));
    EXPECT_FALSE(decoded(with(R"("url":"\udc00x")")));
    EXPECT_FALSE(decoded(with(R"("url":"\ud800\ud800")")));
    EXPECT_EQ(decoded(with(R"("url":"\ud83d\ude00")"))->url, "😀");
}

TEST(InstanceConfigReader, EndlessNestingIsNoTrouble) {
    constexpr std::size_t deep = 100'000;
    EXPECT_FALSE(decoded(repeated("[", deep)));
    EXPECT_FALSE(decoded(repeated("{\"a\":", deep)));
    EXPECT_FALSE(decoded(with("\"extraArgs\":" + repeated("[", deep) + repeated("]", deep))));
    EXPECT_FALSE(decoded(with("\"unknown\":" + repeated("[", deep))));
    EXPECT_FALSE(decoded(with("\"unknown\":" + repeated("[", deep) + repeated("]", deep))));
    EXPECT_FALSE(
        decoded(with("\"unknown\":" + repeated("{\"a\":", deep) + "1" + repeated("}", deep))));
}

TEST(InstanceConfigReader, AnUnknownValueMayNestUpToTheLimit) {
    const auto nested = [](std::size_t levels) {
        return with("\"unknown\":" + repeated("[", levels) + repeated("]", levels));
    };
    EXPECT_TRUE(decoded(nested(InstanceConfig::maximumDepth)));
    EXPECT_FALSE(decoded(nested(InstanceConfig::maximumDepth + 1)));
    const std::string wide = repeated("[[]],", 10'000);
    EXPECT_TRUE(decoded(with("\"unknown\":[" + wide + "0]"))) << "side by side is not deep";
}

TEST(InstanceConfigReader, WhatIsNoReadableFileHoldsNoConfiguration) {
    const TemporaryFolder folder;
    ::mkfifo((folder / "fifo").c_str(), 0600);
    fs::create_symlink(folder / "loop", folder / "loop");
    fs::create_symlink("nowhere", folder / "dangling");
    write(folder / "empty", "");
    for (const char* name : {"fifo", "loop", "dangling", "empty", ".", "none"}) {
        EXPECT_FALSE(InstanceConfig::read(folder / name)) << name;
    }
    EXPECT_FALSE(InstanceConfig::read("/dev/zero"));
}

TEST(InstanceConfigReader, AHugeFileHoldsNoConfiguration) {
    const TemporaryFolder folder;
    write(folder / "huge", with("\"url\":\"a\""));
    fs::resize_file(folder / "huge", std::uintmax_t{100} << 20U);
    EXPECT_FALSE(InstanceConfig::read(folder / "huge"));
}

TEST(InstanceConfigReader, AFileIsReadThroughALink) {
    const TemporaryFolder folder;
    write(folder / "file", with("\"url\":\"a\""));
    fs::create_symlink("file", folder / "link");
    EXPECT_TRUE(InstanceConfig::read(folder / "link"));
}

} // namespace
} // namespace quorvel
