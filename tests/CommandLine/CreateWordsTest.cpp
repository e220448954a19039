#include "tests/CommandLine/CommandLineHarness.h"
#include "tests/support/AppBundles.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace quorvel {
namespace {

using namespace testing;

TEST(CreateWordsTest, EachSwitchSetsItsOwnFieldAlone) {
    CommandLineHarness harness;
    const std::map<std::string, std::string> switches{
        {"--browser", "registerAsBrowser"},
        {"--open-with", "openWithPassthrough"},
        {"--menu-bar-icon", "menuBarIcon"},
        {"--menu-bar-template", "menuBarIconTemplate"}};
    for (const auto& [word, field] : switches) {
        const auto json = harness
                              .run({"create", "--kind", "web", "--url", "https://a.test", "--name",
                                    "W", "--runner", runnerProgram().string(), "--json", word})
                              .json();
        for (const auto& [other, name] : switches) {
            EXPECT_EQ(json["config"][name], word == other) << word << " " << name;
        }
        EXPECT_EQ(json["config"]["shareUserFolders"], true);
    }
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
