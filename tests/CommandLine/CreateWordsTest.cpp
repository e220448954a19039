#include "LaunchKit/CloneOptions.h"
#include "Presentation/SystemWords.h"
#include "tests/CommandLine/CommandLineHarness.h"
#include "tests/support/AppBundles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <array>
#include <utility>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::ContainsRegex;
using ::testing::HasSubstr;
using ::testing::Not;

std::string factOf(const CloneSwitch& each) {
    return inSystemWords(switchContext, each.fact);
}

TEST(CreateWordsTest, EachSwitchSetsItsOwnFieldAlone) {
    CommandLineHarness harness;
    for (const CloneSwitch& set : cloneSwitches) {
        const auto json =
            harness
                .run({"create", "--kind", "web", "--url", "https://a.test", "--name", "W",
                      "--replace", "--runner", runnerProgram().string(), "--json", set.flag})
                .json();
        for (const CloneSwitch& each : cloneSwitches) {
            EXPECT_EQ(json["config"][std::string(each.key)], each.defaultValue() != (&each == &set))
                << set.flag << " " << each.key;
        }
    }
}

// Not read from `cloneSwitches`, in which two rows could have each other's flag.
TEST(CreateWordsTest, EachFlagSetsTheKeyThatItIsDocumentedFor) {
    CommandLineHarness harness;
    constexpr std::array switches{
        std::pair("--browser", "registerAsBrowser"),
        std::pair("--open-with", "openWithPassthrough"),
        std::pair("--menu-bar-icon", "menuBarIcon"),
        std::pair("--menu-bar-template", "menuBarIconTemplate"),
        std::pair("--isolate-folders", "shareUserFolders"),
    };
    ASSERT_EQ(switches.size(), cloneSwitches.size());
    for (const auto& [flag, set] : switches) {
        const auto config =
            harness
                .run({"create", "--kind", "web", "--url", "https://a.test", "--name", "W",
                      "--replace", "--runner", runnerProgram().string(), "--json", flag})
                .json()["config"];
        for (const auto& [unused, key] : switches) {
            const bool byDefault = std::string_view(key) == "shareUserFolders";
            EXPECT_EQ(config[key], byDefault != (key == set)) << flag << " " << key;
        }
    }
}

TEST(CreateWordsTest, EachSwitchIsShownWhenItIsSet) {
    CommandLineHarness harness;
    std::vector<std::string> arguments{"create", "--kind",         "web",
                                       "--url",  "https://a.test", "--name",
                                       "W",      "--runner",       runnerProgram().string()};
    ASSERT_EQ(harness.run(arguments).status, 0);
    arguments.emplace_back("--replace");
    for (const CloneSwitch& each : cloneSwitches) {
        EXPECT_THAT(harness.run({"show", "W"}).output, Not(HasSubstr(factOf(each) + " ")));
        if (!each.appsOnly) {
            arguments.emplace_back(each.flag);
        }
    }
    ASSERT_EQ(harness.run(arguments).status, 0);
    const std::string output = harness.run({"show", "W"}).output;
    for (const CloneSwitch& each : cloneSwitches) {
        const auto row = ContainsRegex("\n" + factOf(each) + "  +yes\n");
        EXPECT_EQ(::testing::Value(output, row), !each.appsOnly) << each.fact << "\n" << output;
    }
}

TEST(CreateWordsTest, TheHelpIsInThisSystemsWords) {
    CommandLineHarness harness;
    const std::string help = harness.run({"create", "--help"}).output;
    EXPECT_THAT(help, HasSubstr(inSystemWords("CreateOptions", "Show no Dock icon")));
    EXPECT_EQ(help.find("Dock") == std::string::npos,
              systemWords("CreateOptions", "Show no Dock icon") != nullptr);
    for (const CloneSwitch& each : cloneSwitches) {
        EXPECT_THAT(help, HasSubstr(inSystemWords(switchContext, each.help)));
    }
}

TEST(CreateWordsTest, LinksGoToABrowserTheCloneItselfOrAnotherClone) {
    CommandLineHarness harness;
    const std::string other = makeWrapper(harness.home / "Applications/Browser.app", "Browser");
    const auto linksOf = [&](const std::vector<std::string>& more) {
        std::vector<std::string> arguments{"create", "--kind",         "web",
                                           "--url",  "https://a.test", "--name",
                                           "W",      "--runner",       runnerProgram().string(),
                                           "--json", "--replace"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return harness.run(arguments).json()["config"].value("links", "absent");
    };
    EXPECT_EQ(linksOf({}), "absent");
    EXPECT_EQ(linksOf({"--links", "default"}), "absent");
    EXPECT_EQ(linksOf({"--links", ""}), "absent");
    EXPECT_EQ(linksOf({"--links", "inside"}), "inside");
    EXPECT_EQ(linksOf({"--links", "Browser"}), other);
    EXPECT_EQ(linksOf({"--links", other}), other);
    EXPECT_EQ(linksOf({"--links", "app.quorvel.instance.test"}), other);
    const CommandResult missing = harness.run(
        {"create", "--kind", "web", "--url", "https://a.test", "--name", "V", "--links", "Nobody"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_THAT(missing.errors, HasSubstr("There is no clone named “Nobody”."));
}

TEST(CreateWordsTest, RefusesUnknownChoicesAndNamesTheKnownOnes) {
    CommandLineHarness harness;
    const auto errorsOf = [&](const std::string& option) {
        const CommandResult result = harness.run({"create", "--name", "W", option, "nonsense"});
        EXPECT_EQ(result.status, 2);
        return result.errors;
    };
    EXPECT_THAT(errorsOf("--kind"), HasSubstr("{app,web,file,command}"));
    EXPECT_THAT(errorsOf("--strategy"), HasSubstr("{home-override,container-redirect,"
                                                  "wrapper-identity,unsupported}"));
    EXPECT_THAT(errorsOf("--label-position"), HasSubstr("{bottom,center,top}"));
    EXPECT_THAT(harness.run({"create", "--help"}).output, HasSubstr("app, web, file or command"));
}

TEST(CreateWordsTest, AValueInAnArgumentOfItsOwnMayLookLikeAnything) {
    CommandLineHarness harness;
    const auto json = harness
                          .run({"create",    "--kind",    "command",
                                "--command", "/bin/echo", "--name",
                                "W",         "--runner",  runnerProgram().string(),
                                "--json",    "--arg",     "--flag=",
                                "--arg",     "--",        "--arg=",
                                "--arg",     "--arg=",    "--env",
                                "--K=",      "--label=",  "--arg",
                                "--name="})
                          .json();
    EXPECT_EQ(json["config"]["commandArgs"],
              nlohmann::json({"--flag=", "--", "", "--arg=", "--name="}));
    EXPECT_EQ(json["config"]["environment"], (nlohmann::json{{"--K", ""}}));
    EXPECT_EQ(json["config"]["displayName"], "W");
}

} // namespace
} // namespace quorvel
