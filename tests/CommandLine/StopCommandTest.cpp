#include "LaunchKit/Homes/HomeLock.h"
#include "LaunchKit/InstanceConfig.h"
#include "Platform/processes/Process.h"
#include "tests/CommandLine/CommandLineHarness.h"
#include "tests/support/AppBundles.h"
#include "tests/support/Waiting.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <csignal>
#include <fstream>
#include <sys/wait.h>
#include <unistd.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class StopCommandTest : public ::testing::Test {
protected:
    // Makes and starts a clone whose command runs this script once it has made the file "ready".
    void start(const std::string& script) {
        ASSERT_EQ(harness_
                      .run({"create", "--kind", "command", "--name", "Work", "--command", "/bin/sh",
                            "--arg=-c", "--arg",
                            script + "; > " + ready().string() + "; while :; do sleep 0.02; done",
                            "--runner", runnerProgram()})
                      .status,
                  0);
        runner_ = Process::run(
            {.executable = harness_.home / "Applications/Work.app/Contents/MacOS/runner"});
        ASSERT_TRUE(waitUntil([&] { return std::filesystem::exists(ready()); }));
    }

    ~StopCommandTest() override {
        if (runner_) {
            (void)harness_.run({"stop", "Work", "--force", "--wait", "0"});
            runner_->sendSignal(SIGKILL);
            runner_->waitUntilExit();
        }
    }

    [[nodiscard]] std::filesystem::path ready() const { return harness_.home / "ready"; }

    CommandLineHarness harness_{};
    std::optional<Process> runner_{};
};

TEST_F(StopCommandTest, ACloneThatIsNotRunningIsReportedWithoutAnError) {
    makeWrapper(harness_.home / "Applications/Work.app", "Work");
    const CommandResult result = harness_.run({"stop", "Work"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "“Work” is not running.\n");
    EXPECT_EQ(harness_.run({"stop", "Work", "--json"}).json()["outcome"], "notRunning");
}

TEST_F(StopCommandTest, AProgramThatMayBeAnotherClonesIsReportedAsAnError) {
    makeWrapper(harness_.home / "Applications/Work.app", "Work");
    const auto lock = lockHome(minimalConfig());
    const CommandResult result = harness_.run({"stop", "Work", "--json"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.json()["outcome"], "elsewhere");
    EXPECT_THAT(result.errors, HasSubstr("may be another clone’s"));
}

TEST_F(StopCommandTest, WhatEndsWhenAskedIsCounted) {
    start("trap 'exit 0' TERM");
    const CommandResult result = harness_.run({"stop", "Work", "--json"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.json()["outcome"], "ended");
    EXPECT_GE(result.json()["ended"], 2);
    EXPECT_EQ(result.json()["left"], 0);
    EXPECT_EQ(runner_->waitUntilExit(), 0);
}

TEST_F(StopCommandTest, ForceIsOnlyUsedIfItIsAskedFor) {
    start("trap '' TERM");
    const CommandResult result = harness_.run({"stop", "Work", "--wait", "0.2"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, StartsWith("“Work” was asked to end, but "));
    EXPECT_THAT(result.errors, HasSubstr("With --force, "));
    EXPECT_TRUE(runner_->isRunning());
    const CommandResult forced = harness_.run({"stop", "Work", "--wait", "0.2", "--force"});
    EXPECT_EQ(forced.status, 0);
    EXPECT_THAT(forced.output, StartsWith("“Work” was ended by force: "));
    EXPECT_FALSE(runner_->isRunning());
}

TEST_F(StopCommandTest, AnInterruptEndsTheWaitingAtOnceAndSaysWhatWasDone) {
    const std::filesystem::path asked = harness_.home / "asked";
    const std::filesystem::path said = harness_.home / "said";
    start("trap '> " + asked.string() + "' TERM");
    const pid_t command = ::fork();
    if (command == 0) {
        std::istringstream input;
        std::ostringstream output;
        std::ofstream errors(said);
        const CommandContext context{
            input, output, errors, false, false, harness_.workspace, InstanceRegistry()};
        ::_exit(runCommandLine({"stop", "Work", "--wait", "60", "--force"}, context));
    }
    EXPECT_TRUE(waitUntil([&] { return std::filesystem::exists(asked); }));
    ::kill(command, SIGINT);
    int status = 0;
    EXPECT_TRUE(waitUntil([&] { return ::waitpid(command, &status, WNOHANG) == command; }));
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGINT) << status;
    EXPECT_EQ(read(said), "“Work” was asked to end, and may still be doing so.\n");
    EXPECT_TRUE(runner_->isRunning()) << "it is not ended by force";
}

TEST_F(StopCommandTest, OnATerminalForceIsAQuestion) {
    start("trap '' TERM");
    harness_.inputIsTerminal = true;
    harness_.typed = "n\n";
    const CommandResult refused = harness_.run({"stop", "Work", "--wait", "0.2"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.errors, HasSubstr("End it by force? Unsaved work is lost. [y/N] "));
    EXPECT_TRUE(runner_->isRunning());
    harness_.typed = "y\n";
    EXPECT_EQ(harness_.run({"stop", "Work", "--wait", "0.2"}).status, 0);
    EXPECT_FALSE(runner_->isRunning());
}

} // namespace
} // namespace quorvel
