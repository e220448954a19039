// Files that are not a configuration, malicious ones in particular: none is read as a clone.
#include "LaunchKit/InstanceConfig.h"

#include "tests/support/TemporaryHome.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

// A valid file except for these members.
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

TEST(RecordReaderTest, TheThreeRequiredKeysAreRequired) {
    EXPECT_FALSE(decoded(R"({"bundleId":"b","instanceHome":"h"})"));
    EXPECT_FALSE(decoded(R"({"displayName":"N","instanceHome":"h"})"));
    EXPECT_FALSE(decoded(R"({"displayName":"N","bundleId":"b"})"));
    EXPECT_FALSE(decoded(R"({"displayName":null,"bundleId":"b","instanceHome":"h"})"));
    EXPECT_FALSE(decoded("{}"));
    EXPECT_TRUE(decoded(R"({"displayName":"","bundleId":"","instanceHome":""})"));
}

TEST(RecordReaderTest, AFaultInTheTextIsNamed) {
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
              start + "It contains a NUL byte.");
    EXPECT_EQ(failure(with(R"("url":"x")") + std::string(1, '\0')),
              start + "It contains a NUL byte.");
    EXPECT_EQ(failure(with(R"("url":"x")") + "more"),
              start + "The document root must not be followed by other values.");
}

TEST(RecordReaderTest, EveryFaultOfAFileIsReportedTogether) {
    try {
        (void)InstanceConfig::fromJson(
            R"({"bundleId":7,"kind":"movie","iconLabel":{"text":"a","position":"left"},"x":[1]})");
        FAIL() << "no error";
    } catch (const ConfigError& error) {
        EXPECT_EQ(error.description(), "The value of “bundleId” is of the wrong type. "
                                       "The value of “kind” is not known. "
                                       "The value of “iconLabel.position” is not known. "
                                       "The key “iconLabel.colorHex” is missing. "
                                       "The key “displayName” is missing. "
                                       "The key “instanceHome” is missing.");
    }
}

TEST(RecordReaderTest, NullMeansTheDefault) {
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

TEST(RecordReaderTest, SharingIsOffOnlyWhenTheFileSaysSo) {
    EXPECT_FALSE(decoded(with(R"("shareUserFolders":false)"))->shareUserFolders);
    EXPECT_TRUE(decoded(with(R"("shareUserFolders":true)"))->shareUserFolders);
}

TEST(RecordReaderTest, WhatAKindNeedsIsNotChecked) {
    const auto config = decoded(with(R"("kind":"command")"));
    ASSERT_TRUE(config);
    EXPECT_EQ(config->kind, ShortcutKind::command);
    EXPECT_EQ(config->commandPath, std::nullopt);
}

TEST(RecordReaderTest, UnknownNamesAreRefused) {
    EXPECT_FALSE(decoded(with(R"("strategy":"home_override")")));
    EXPECT_FALSE(decoded(with(R"("strategy":"")")));
    EXPECT_FALSE(decoded(with(R"("kind":"App")")));
    EXPECT_FALSE(decoded(with(R"("iconLabel":{"text":"a","colorHex":"b","position":"left"})")));
}

TEST(RecordReaderTest, AnIncompleteLabelInvalidatesTheFile) {
    EXPECT_TRUE(decoded(with(R"("iconLabel":{"text":"a","colorHex":"b","position":"top"})")));
    EXPECT_TRUE(
        decoded(with(R"("iconLabel":{"x":[{}],"text":"a","colorHex":"b","position":"top"})")));
    EXPECT_FALSE(decoded(with(R"("iconLabel":{"text":"a","colorHex":"b"})")));
    EXPECT_FALSE(decoded(with(R"("iconLabel":{"text":"a","position":"top"})")));
    EXPECT_FALSE(decoded(with(R"("iconLabel":{"colorHex":"b","position":"top"})")));
    EXPECT_FALSE(decoded(with(R"("iconLabel":{"text":null,"colorHex":"b","position":"top"})")));
    EXPECT_FALSE(decoded(with(R"("iconLabel":{"text":1,"colorHex":"b","position":"top"})")));
    EXPECT_FALSE(decoded(with(R"("iconLabel":{})")));
    EXPECT_FALSE(decoded(with(R"("iconLabel":"a")")));
}

TEST(RecordReaderTest, AValueOfTheWrongTypeIsNotReplacedByTheDefault) {
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

TEST(RecordReaderTest, KeysThatItDoesNotKnowAreIgnored) {
    const auto config = decoded(with(
        R"("x":1,"y":{"url":"no","deep":[[{"kind":[]}],null]},"z":[],"url":"yes","DisplayName":7)"));
    ASSERT_TRUE(config);
    EXPECT_EQ(config->url, "yes");
    EXPECT_EQ(config->displayName, "N");
}

TEST(RecordReaderTest, OnlyAnObjectIsAConfiguration) {
    for (const char* json : {"", " ", "[]", "null", "1", "\"text\"", "true", "{", "}", "[{}]",
                             "{\"displayName\"", "nonsense", "\xEF\xBB\xBF"}) {
        EXPECT_FALSE(decoded(json)) << json;
    }
}

TEST(RecordReaderTest, NothingMayFollowTheObject) {
    EXPECT_FALSE(decoded(with("\"url\":\"a\"") + "x"));
    EXPECT_FALSE(decoded(with("\"url\":\"a\"") + "{}"));
    EXPECT_TRUE(decoded(with("\"url\":\"a\"") + "\n\n"));
}

TEST(RecordReaderTest, EveryTruncationIsRefused) {
    const std::string whole =
        with(R"("iconLabel":{"text":"a","colorHex":"b","position":"top"},"extraArgs":["a"])");
    for (std::size_t length = 0; length < whole.size(); ++length) {
        EXPECT_FALSE(decoded(whole.substr(0, length))) << length;
    }
}

TEST(RecordReaderTest, TheFirstOfDuplicateKeysCounts) {
    EXPECT_EQ(decoded(with(R"("url":"a","url":"b")")).value().url, "a");
    EXPECT_EQ(decoded(with(R"("url":"a","url":7,"url":{"x":[1]})")).value().url, "a");
    EXPECT_EQ(decoded(with(R"("displayName":"other")")).value().displayName, "N");
    EXPECT_EQ(decoded(with(R"("url":null,"url":"a")")).value().url, std::nullopt);
    EXPECT_EQ(decoded(with(R"("url":"a","\u0075rl":1e999)")).value().url, "a");
    EXPECT_FALSE(decoded(with(R"("url":7,"url":"a")")));
    using Map = std::map<std::string, std::string>;
    EXPECT_EQ(decoded(with(R"("environment":{"A":"1","A":"2","B":"3"})")).value().environment,
              (Map{{"A", "1"}, {"B", "3"}}));
    EXPECT_EQ(
        decoded(with(R"("infoPlistOverrides":{"A":"1","A":[{}]})")).value().infoPlistOverrides,
        (Map{{"A", "1"}}));
    EXPECT_FALSE(decoded(with(R"("environment":{"A":2,"A":"1"})")));
    const auto label = decoded(with(R"("iconLabel":{"text":"a","text":"b","colorHex":"c",)"
                                    R"("position":"top","position":"nowhere"})"));
    EXPECT_EQ(label.value().iconLabel, (IconLabel{"a", "c", IconLabel::Position::top}));
}

TEST(RecordReaderTest, AByteOrderMarkIsIgnored) {
    EXPECT_EQ(decoded("\xEF\xBB\xBF" + with(R"("url":"a")")).value().url, "a");
    EXPECT_FALSE(decoded("\xEF\xBB\xBF\xEF\xBB\xBF" + with(R"("url":"a")")));
}

// Every value is tried under an unknown key of the file and of the label.
void expectIgnored(const std::string& member) {
    const auto config = decoded(with(member + R"(,"url":"a","kind":"web")"));
    ASSERT_TRUE(config) << member.substr(0, 100);
    EXPECT_EQ(config->url, "a");
    EXPECT_EQ(config->kind, ShortcutKind::web);
    const auto labelled = decoded(
        with(R"("iconLabel":{"text":"a","colorHex":"c",)" + member + R"(,"position":"top"})"));
    ASSERT_TRUE(labelled) << member.substr(0, 100);
    EXPECT_EQ(labelled->iconLabel, (IconLabel{"a", "c", IconLabel::Position::top}));
}

TEST(RecordReaderTest, AnUnknownKeyMayHoldAnything) {
    for (const char* value :
         {"1e999", "-1E+999", "[1e999]", "99999999999999999999999999", "0.0000001e-9999",
          R"("\ud800")", R"("\udc00x")", R"({"\ud800":["\udfff"]})", R"([{"a":[]},{},[[]],""])"}) {
        expectIgnored("\"unknown\":" + std::string(value));
        expectIgnored("\"unknown\" : [ " + std::string(value) + " , { \"a\" : null } ]");
    }
    expectIgnored(R"("\ud800":1)");
    expectIgnored(R"("\udc00":1)");
    expectIgnored(R"("a\"b\\":1)");
    std::string digits(1000, '9');
    expectIgnored("\"unknown\":-" + digits + "." + digits);
}

TEST(RecordReaderTest, InvalidJsonIsRefusedEvenUnderAnUnknownKey) {
    for (const char* value :
         {"",          "1e",         "01",    "+1",   ".5",   "1.",     "-",       "0x10",
          "NaN",       "nul",        "tru",   "'a'",  "\"a",  "\"\t\"", R"("\x")", R"("\u12g4")",
          R"("\u12")", "[",          "]",     "[1,]", "[,1]", "[1 2]",  "{",       "{\"a\"}",
          "{\"a\":}",  "{\"a\":1,}", "{1:2}", "[}",   "{]",   "[1}",    "1e999,",  "1e999 1"}) {
        EXPECT_FALSE(decoded(with("\"unknown\":" + std::string(value)))) << value;
        EXPECT_FALSE(decoded(with("\"unknown\":[1e999," + std::string(value) + "]"))) << value;
    }
    EXPECT_FALSE(decoded(with("\"unknown\":1e999") + "x"));
    EXPECT_FALSE(decoded(with("\"unknown\":1e999,")));
    EXPECT_FALSE(decoded("[" + with("\"unknown\":1e999") + "]"));
}

TEST(RecordReaderTest, NumbersOutOfRangeAreRefused) {
    for (const char* number :
         {"1e999", "-1e999", "99999999999999999999999999", "1e", "0x10", "NaN", "01"}) {
        EXPECT_FALSE(decoded(with("\"menuBarIcon\":" + std::string(number)))) << number;
    }
}

TEST(RecordReaderTest, TextThatIsNotUtf8IsRefused) {
    EXPECT_FALSE(decoded(with("\"url\":\"\xFF\"")));
    EXPECT_FALSE(decoded(with("\"url\":\"caf\xE9\"")));
    EXPECT_FALSE(decoded(with("\"\xC0\xAF\":\"a\"")));
    EXPECT_FALSE(decoded(with("\"unknown\":\"\xED\xA0\x80\"")));
}

TEST(RecordReaderTest, LoneSurrogatesAreRefused) {
    EXPECT_FALSE(decoded(with(R"("url":"\ud800")")));
    EXPECT_FALSE(decoded(with(R"("url":"\udc00x")")));
    EXPECT_FALSE(decoded(with(R"("url":"\ud800\ud800")")));
    EXPECT_EQ(decoded(with(R"("url":"\ud83d\ude00")"))->url, "😀");
}

TEST(RecordReaderTest, EndlessNestingIsHarmless) {
    constexpr std::size_t deep = 100'000;
    EXPECT_FALSE(decoded(repeated("[", deep)));
    EXPECT_FALSE(decoded(repeated("{\"a\":", deep)));
    EXPECT_FALSE(decoded(with("\"extraArgs\":" + repeated("[", deep) + repeated("]", deep))));
    EXPECT_FALSE(decoded(with("\"unknown\":" + repeated("[", deep))));
    expectIgnored("\"unknown\":" + repeated("[", deep) + repeated("]", deep));
    expectIgnored("\"unknown\":" + repeated("{\"a\":", deep) + "1" + repeated("}", deep));
}

TEST(RecordReaderTest, AnUnknownValueMayNestToAnyDepth) {
    for (const std::size_t levels : {511U, 512U, 513U, 514U, 1'000'000U}) {
        expectIgnored("\"unknown\":" + repeated("[", levels) + repeated("]", levels));
    }
    expectIgnored("\"unknown\":[" + repeated("[[]],", 10'000) + "0]");
}

TEST(RecordReaderTest, AnUnreadableFileIsNotAConfiguration) {
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

TEST(RecordReaderTest, AHugeFileIsNotAConfiguration) {
    const TemporaryFolder folder;
    write(folder / "huge", with("\"url\":\"a\""));
    fs::resize_file(folder / "huge", std::uintmax_t{100} << 20U);
    EXPECT_FALSE(InstanceConfig::read(folder / "huge"));
}

TEST(RecordReaderTest, AFileIsReadThroughALink) {
    const TemporaryFolder folder;
    write(folder / "file", with("\"url\":\"a\""));
    fs::create_symlink("file", folder / "link");
    EXPECT_TRUE(InstanceConfig::read(folder / "link"));
}

} // namespace
} // namespace quorvel
