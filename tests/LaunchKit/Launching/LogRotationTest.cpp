#include "LaunchKit/Launching/LogRotation.h"

#include "tests/Runner/RunnerFixture.h"
#include "tests/support/ImmutableFile.h"

#include <gmock/gmock.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::StartsWith;
namespace fs = std::filesystem;

class LogRotationTest : public ScriptedRunnerFixture {
protected:
    [[nodiscard]] fs::path logNamed(const std::string& end = "") const {
        return cloneHome() / ("quorvel-instance.log" + end);
    }

    // Makes a sparse log of that size, which begins with the text.
    void makeLog(const std::string& text, std::uintmax_t size) const {
        write(logNamed(), text);
        fs::resize_file(logNamed(), size);
    }

    [[nodiscard]] std::string startOf(const std::string& end) const {
        return read(logNamed(end)).substr(0, 5);
    }
};

TEST_F(LogRotationTest, ALogOfTenMebibytesStays) {
    makeLog("first", largestLog);
    setAsideLargeLog(cloneHome());
    EXPECT_EQ(fs::file_size(logNamed()), largestLog);
    EXPECT_FALSE(fs::exists(logNamed(".1")));
}

TEST_F(LogRotationTest, ThreeLargerLogsAreKept) {
    for (const char* text : {"one  ", "two  ", "three", "four "}) {
        makeLog(text, largestLog + 1);
        setAsideLargeLog(cloneHome());
        EXPECT_FALSE(fs::exists(logNamed()));
    }
    EXPECT_EQ(startOf(".1"), "four ");
    EXPECT_EQ(startOf(".2"), "three");
    EXPECT_EQ(startOf(".3"), "two  ");
    EXPECT_FALSE(fs::exists(logNamed(".4")));
}

TEST_F(LogRotationTest, WhatIsNotAPlainFileStays) {
    fs::create_directories(cloneHome());
    write(at("large"), "");
    fs::resize_file(at("large"), largestLog + 1);
    fs::create_symlink(at("large"), logNamed());
    setAsideLargeLog(cloneHome());
    EXPECT_TRUE(fs::is_symlink(logNamed()));
    fs::remove(logNamed());

    makeLog("first", largestLog + 1);
    write(logNamed(".2") / "kept", "kept");
    setAsideLargeLog(cloneHome());
    EXPECT_EQ(startOf(""), "first");
    EXPECT_EQ(read(logNamed(".2") / "kept"), "kept");
    EXPECT_FALSE(fs::exists(logNamed(".1"))) << "nor is a part of the others moved";
}

TEST_F(LogRotationTest, IfOneCantBeMovedNoneIsReplaced) {
    makeLog("first", largestLog + 1);
    write(logNamed(".1"), "one  ");
    write(logNamed(".2"), "two  ");
    const ImmutableFile immutable(logNamed(".2"));
    if (!immutable.isSet()) {
        GTEST_SKIP() << "this file system or user can't make files immutable";
    }
    setAsideLargeLog(cloneHome());
    EXPECT_EQ(startOf(""), "first");
    EXPECT_EQ(startOf(".1"), "one  ");
    EXPECT_EQ(startOf(".2"), "two  ");
}

TEST_F(LogRotationTest, TheRunnerSetsALargeLogAsideAndBeginsANewOne) {
    makeLog("first", largestLog + 1);
    EXPECT_EQ(run(scripted("echo hello")), 0);
    EXPECT_EQ(log(), "hello\n");
    EXPECT_EQ(startOf(".1"), "first");

    fs::resize_file(logNamed(), largestLog + 1);
    InstanceConfig command = configOf(ShortcutKind::command);
    command.commandPath = "/bin/echo";
    command.commandArgs = {"again"};
    EXPECT_EQ(run(command), 0);
    EXPECT_EQ(log(), "again\n");
    EXPECT_EQ(startOf(".1"), "hello");
    EXPECT_EQ(startOf(".2"), "first");
}

TEST_F(LogRotationTest, ARunThatIsStillWritingLosesNothing) {
    InstanceConfig command = configOf(ShortcutKind::command);
    command.commandPath = "/bin/sh";
    command.commandArgs = {"-c", "echo begin; echo $$ > " + at("pid").string() + "; while ! [ -e " +
                                     at("go").string() + " ]; do sleep 0.02; done; echo end"};
    const fs::path bundle = wrapper(command);
    Process first = start(bundle);
    ASSERT_TRUE(targetRuns());
    fs::resize_file(logNamed(), largestLog + 1);
    write(at("go"), "");
    // The second one finds a large log, which the first may still be writing.
    EXPECT_EQ(start(bundle).waitUntilExit(), 0);
    EXPECT_EQ(first.waitUntilExit(), 0);
    const std::string aside = read(logNamed(".1"));
    EXPECT_THAT(aside, StartsWith("begin\n"));
    const std::string now = log();
    const auto count = [](const std::string& text) {
        std::size_t found = 0;
        for (std::size_t at = 0; (at = text.find("end\n", at)) != std::string::npos; ++at) {
            ++found;
        }
        return found;
    };
    EXPECT_EQ(count(aside) + count(now), 2U);
    EXPECT_TRUE(now.starts_with("begin\n"));
}

TEST_F(LogRotationTest, ARefusedStartSetsNothingAside) {
    const fs::path bundle = wrapper(lasting());
    Process runner = start(bundle);
    ASSERT_TRUE(targetRuns());
    makeLog("first", largestLog + 1);
    EXPECT_EQ(start(bundle).waitUntilExit(), 75);
    EXPECT_FALSE(fs::exists(logNamed(".1"))) << "the first one is still writing into it";
    runner.terminate();
    runner.waitUntilExit();
}

} // namespace
} // namespace quorvel
