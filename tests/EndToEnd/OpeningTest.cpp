// Opening clones whose targets don't start, or run on their own.
#include "tests/EndToEnd/Programs.h"
#include "tests/support/AppBundles.h"
#include "tests/support/Waiting.h"

#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::HasSubstr;
namespace fs = std::filesystem;

class OpeningTest : public ::testing::Test {
protected:
    // Returns what a command that must fail printed, with its status.
    std::string failureOf(const std::vector<std::string>& arguments) {
        try {
            return "worked: " + quorvelctl_.run(arguments);
        } catch (const std::runtime_error& error) {
            return error.what();
        }
    }

    QuorvelctlInAHome quorvelctl_;
    fs::path app_ = quorvelctl_.home / "Applications/Thing.app";
};

TEST_F(OpeningTest, ACloneWhoseTargetCantStartFailsWithItsRunnersSentence) {
    makeAppBundle(app_);
    quorvelctl_.run({"create", "--target", app_.string(), "--name", "Work"});
    fs::remove(app_ / "Contents/MacOS/Thing");
    EXPECT_EQ(
        failureOf({"open", "Work"}),
        "quorvelctl open: “Thing” couldn’t be started: no such file or directory\nFAILED 1\n");
    EXPECT_EQ(
        failureOf({"open", "Work", "--json"}),
        "quorvelctl open: “Thing” couldn’t be started: no such file or directory\nFAILED 1\n");
    fs::remove_all(app_);
    EXPECT_EQ(failureOf({"open", "Work"}),
              "quorvelctl open: Not a readable .app bundle: " + app_.string() + "\nFAILED 1\n");
}

TEST_F(OpeningTest, AWebCloneFailsWithoutItsHost) {
    quorvelctl_.run({"create", "--kind", "web", "--url", "https://example.com", "--name", "Site"});
    EXPECT_EQ(failureOf({"open", "Site"}),
              "quorvelctl open: the web host for “Site” is not installed; on Linux, the packages "
              "quorvel and libwebkitgtk-6.0-4 contain it\nFAILED 1\n");
    EXPECT_THAT(failureOf({"create", "--kind", "web", "--url", "https://example.com", "--name",
                           "Site 2", "--launch"}),
                HasSubstr("the web host for “Site 2” is not installed; on Linux, the packages "
                          "quorvel and libwebkitgtk-6.0-4 contain it\nFAILED 1\n"));
    EXPECT_THAT(quorvelctl_.log("Site"), HasSubstr("is not installed"));
}

TEST_F(OpeningTest, ACloneWhoseTargetOutlivedItsRunnerIsNotStartedTwice) {
    makeScriptedAppBundle(app_, "echo started; exec sleep 600");
    quorvelctl_.run({"create", "--target", app_.string(), "--name", "Work"});
    EXPECT_EQ(quorvelctl_.run({"open", "Work"}), "");
    EXPECT_EQ(quorvelctl_.run({"open", "Work"}), "") << "a clone that runs properly";
    ASSERT_TRUE(waitUntil([&] { return quorvelctl_.log("Work") == "started\n"; }));
    const auto runner = runnerOf(quorvelctl_.home / "Applications/Work.app");
    ASSERT_TRUE(runner);
    ::kill(*runner, SIGKILL);
    ASSERT_TRUE(waitUntil([&] { return !quorvelctl_.isListedAsRunning("Work"); }));
    EXPECT_EQ(failureOf({"open", "Work"}),
              "quorvelctl open: “Work” is still running, or a clone that shares its data folder "
              "is, or a program that it started\n"
              "FAILED 1\n");
    EXPECT_THAT(quorvelctl_.log("Work"), ::testing::StartsWith("started\nquorvel-runner: “Work”"));
    const std::string home = "HOME=" + quorvelctl_.data("Work").string();
    for (const auto& entry : fs::directory_iterator("/proc")) {
        if (read(entry.path() / "environ").find(home) != std::string::npos) {
            ::kill(std::stoi(entry.path().filename()), SIGKILL);
        }
    }
    EXPECT_TRUE(waitUntil([&] { return failureOf({"open", "Work"}) == "worked: "; }));
}

TEST_F(OpeningTest, ACommandThatEndsAtOnceHasWorked) {
    quorvelctl_.run({"create", "--kind", "command", "--command", "/bin/false", "--name", "Job"});
    EXPECT_EQ(quorvelctl_.run({"open", "Job"}), "");
}

} // namespace
} // namespace quorvel
