#include "tests/CommandLine/CommandLineHarness.h"
#include "tests/support/AppBundles.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <filesystem>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::EndsWith;
using ::testing::HasSubstr;

class LogCommandTest : public ::testing::Test {
protected:
    LogCommandTest() { makeWrapper(harness_.home / "Applications/Work.app", "Work"); }

    void writeLog(const std::string& text) const {
        write(harness_.home / "QuorvelInstances/Work/quorvel-instance.log", text);
    }

    CommandLineHarness harness_{};
};

const std::string hostile = "title \x1b]0;gone\x07\tgr\xc3\xbc\xc3\x9f\xff\nnext\n";

TEST_F(LogCommandTest, AFileGetsTheLogAsItIs) {
    writeLog(hostile);
    EXPECT_EQ(harness_.run({"log", "Work"}).output, hostile);
}

TEST_F(LogCommandTest, ATerminalGetsItsControlCharactersEscaped) {
    writeLog(hostile);
    harness_.outputIsTerminal = true;
    EXPECT_EQ(harness_.run({"log", "Work"}).output,
              "title \\u{1b}]0;gone\\u{7}\tgr\xc3\xbc\xc3\x9f\\xff\nnext\n");
}

TEST_F(LogCommandTest, ACharacterBetweenTwoPartsIsNotTornForATerminal) {
    std::string text(65535, 'x');
    text += "\xc3\xbc\n";
    writeLog(text);
    harness_.outputIsTerminal = true;
    EXPECT_EQ(harness_.run({"log", "Work"}).output, text);
}

TEST_F(LogCommandTest, ACloneWithoutALogIsAnError) {
    const CommandResult result = harness_.run({"log", "Work"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr("“Work” has no log yet at "));
}

TEST_F(LogCommandTest, JsonHasTheEndOfALargeLog) {
    writeLog("begin" + std::string(std::size_t{1} << 20U, 'x'));
    const nlohmann::json form = harness_.run({"log", "Work", "--json"}).json();
    EXPECT_EQ(form["size"], (std::size_t{1} << 20U) + 5);
    EXPECT_EQ(form["skipped"], 5);
    EXPECT_EQ(form["text"], std::string(std::size_t{1} << 20U, 'x'));
    EXPECT_THAT(form["path"].get<std::string>(), EndsWith("quorvel-instance.log"));
}

TEST_F(LogCommandTest, FollowingAndJsonCantBeCombined) {
    EXPECT_EQ(harness_.run({"log", "Work", "--json", "--follow"}).status, 2);
}

} // namespace
} // namespace quorvel
