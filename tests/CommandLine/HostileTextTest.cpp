// Texts from files that would steer a terminal, hide in it or fill it.
#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/InstanceRecord.h"
#include "tests/CommandLine/CommandLineHarness.h"
#include "tests/support/AppBundles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::HasSubstr;
using ::testing::Not;

class HostileTextTest : public ::testing::Test {
protected:
    void addClone(const std::string& file, const std::string& name) const {
        makeWrapper(harness.home / ("Applications/" + file + ".app"), minimalConfig(name));
    }

    CommandLineHarness harness;
};

TEST_F(HostileTextTest, OneEndlessNameDoesNotFillTheList) {
    addClone("long", std::string(1'000'000, 'x'));
    for (int number = 0; number < 78; ++number) {
        addClone(std::to_string(number), "clone " + std::to_string(number));
    }
    const std::string output = harness.run({"list"}).output;
    EXPECT_LT(output.size(), 20'000U);
    EXPECT_THAT(output, HasSubstr("clone 77 "));
    EXPECT_THAT(output, HasSubstr(std::string(60, 'x') + "…"));
}

TEST_F(HostileTextTest, ArgumentsAndVariablesWithoutEndAreCutExceptInJson) {
    const std::string endless(1'000'000, 'x');
    addClone("long", endless);
    InstanceConfig config = minimalConfig("args");
    config.extraArgs = {endless};
    config.environment = {{"K", endless}};
    makeWrapper(harness.home / "Applications/args.app", config);
    EXPECT_LT(harness.run({"show", "args"}).output.size(), 20'000U);
    const std::string path = (harness.home / "Applications/long.app").string();
    EXPECT_LT(harness.run({"show", path}).output.size(), 20'000U);
    EXPECT_LT(harness.run({"show", endless}).errors.size(), 20'000U);
    EXPECT_EQ(harness.run({"show", path, "--json"}).json()["config"]["displayName"], endless)
        << "a script gets the whole";
}

TEST_F(HostileTextTest, AreEscapedInJsonAndMeanTheSame) {
    const std::string name = "a\u009b31m\u202eb\u200bc\x7f";
    addClone("evil", name);
    const CommandResult result = harness.run({"list", "--json"});
    EXPECT_THAT(result.output, HasSubstr("a\\u009b31m\\u202eb\\u200bc\\u007f"));
    EXPECT_THAT(result.output, Not(HasSubstr("\u009b")));
    EXPECT_EQ(result.json()[0]["config"]["displayName"], name);
}

TEST_F(HostileTextTest, ThatCantBeSeenAreShown) {
    addClone("one", "Work");
    addClone("two", "Work\u200b");
    EXPECT_THAT(harness.run({"list"}).output, HasSubstr("Work\\u{200b}"));
}

} // namespace
} // namespace quorvel
