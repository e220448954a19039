#include "tests/CommandLine/CommandLineHarness.h"
#include "tests/support/AppBundles.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <filesystem>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class DuplicateCommandTest : public ::testing::Test {
protected:
    DuplicateCommandTest() {
        (void)harness_.run({"create", "--kind", "command", "--command", "/bin/true", "--name",
                            "Work", "--runner", runnerProgram()});
        write(home("Work") / "file", "12345");
        write(home("Work") / "names", home("Work").string() + "/file");
    }

    [[nodiscard]] std::filesystem::path home(const std::string& name) const {
        return harness_.home / "QuorvelInstances" / name;
    }

    CommandResult duplicate(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"duplicate", "Work", "--runner", runnerProgram()});
        return harness_.run(arguments);
    }

    CommandLineHarness harness_{};
};

TEST_F(DuplicateCommandTest, PrintsThePathAndNothingElseWithoutData) {
    const CommandResult result = duplicate({"Second"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, (harness_.home / "Applications/Second.app").string() + "\n");
    EXPECT_EQ(result.errors, "");
    EXPECT_FALSE(std::filesystem::exists(home("Second") / "file"));
}

TEST_F(DuplicateCommandTest, SaysHowTheDataWasCopiedAndWhatNamesTheOriginal) {
    const CommandResult result = duplicate({"Second", "--with-data"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, (harness_.home / "Applications/Second.app").string() + "\n");
    EXPECT_THAT(result.errors, StartsWith("2 files with "));
    EXPECT_THAT(result.errors, HasSubstr("; that took "));
    EXPECT_THAT(result.errors, HasSubstr("1 file of the copy names the original’s data folder and "
                                         "may lead there:\n  names\n"));
    EXPECT_EQ(read(home("Second") / "file"), "12345");
}

TEST_F(DuplicateCommandTest, JsonHasTheCloneAndItsData) {
    const nlohmann::json form = duplicate({"Second", "--with-data", "--json"}).json();
    EXPECT_EQ(form["config"]["displayName"], "Second");
    EXPECT_EQ(form["data"]["bytes"], 5 + (home("Work").string() + "/file").size());
    EXPECT_EQ(form["data"]["namingOriginal"], nlohmann::json({"names"}));
    EXPECT_EQ(form["data"]["lockedCookies"], 0);
    EXPECT_FALSE(duplicate({"Third", "--json"}).json().contains("data"));
}

TEST_F(DuplicateCommandTest, ShowsABarOnATerminalAndErasesIt) {
    harness_.outputIsTerminal = true;
    const CommandResult result = duplicate({"Second", "--with-data"});
    EXPECT_THAT(result.errors, HasSubstr("#]"));
    EXPECT_THAT(result.errors, HasSubstr("2 files with "));
}

TEST_F(DuplicateCommandTest, ATakenNameIsAnError) {
    const CommandResult result = duplicate({"Work", "--with-data"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr("“Work” already exists at "));
}

} // namespace
} // namespace quorvel
