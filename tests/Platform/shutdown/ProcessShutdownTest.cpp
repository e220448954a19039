#include "Platform/shutdown/ProcessShutdown.h"

#include "Platform/homes/IsolatedEnvironment.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/Waiting.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

using namespace testing;
using std::chrono::milliseconds;
namespace fs = std::filesystem;

class ProcessShutdownTest : public ::testing::Test {
protected:
    // Starts a shell with this script in a home of its own, and waits for the file "ready".
    [[nodiscard]] IsolatedProcess start(const std::string& script) const {
        Environment environment = currentEnvironment();
        environment["HOME"] = home_.path();
        Process process = Process::run({.executable = "/bin/sh",
                                        .arguments = {"-c", "cd; " + script},
                                        .environment = environment});
        EXPECT_TRUE(waitUntil([&] { return fs::exists(home_ / "ready"); }));
        return {.process = std::move(process), .home = home_.path()};
    }

    [[nodiscard]] std::size_t running() const { return processesWithHome(home_.path()).size(); }

    static std::vector<IsolatedProcess> listOf(IsolatedProcess process) {
        std::vector<IsolatedProcess> list;
        list.push_back(std::move(process));
        return list;
    }

    TemporaryFolder home_;
};

TEST_F(ProcessShutdownTest, AProcessIsAskedFirst) {
    terminateAndWait(listOf(start("trap 'echo asked > answer; exit' TERM; > ready; "
                                  "while :; do sleep 0.02; done")),
                     milliseconds(10'000));
    EXPECT_EQ(read(home_ / "answer"), "asked\n");
    EXPECT_EQ(running(), 0U);
}

TEST_F(ProcessShutdownTest, AskingTwiceSendsOneSignal) {
    IsolatedProcess process =
        start("count=0; trap 'count=$((count + 1)); echo $count > answer' TERM; "
              "> ready; while :; do sleep 0.02; done");
    process.terminate();
    ASSERT_TRUE(waitUntil([&] { return fs::exists(home_ / "answer"); }));
    process.terminate();
    terminateAndWait(listOf(std::move(process)), milliseconds(300));
    EXPECT_EQ(read(home_ / "answer"), "1\n");
    EXPECT_EQ(running(), 0U);
}

TEST_F(ProcessShutdownTest, AProcessThatStaysIsKilledWithAllThatItStarted) {
    IsolatedProcess process = start("trap '' TERM; setsid sh -c 'trap \"\" TERM; > ready; "
                                    "while :; do sleep 0.02; done' & while :; do sleep 0.02; done");
    EXPECT_GE(running(), 2U);
    terminateAndWait(listOf(std::move(process)), milliseconds(100));
    EXPECT_EQ(running(), 0U);
}

TEST_F(ProcessShutdownTest, TheHomesTemporaryFolderGoesWithTheProcesses) {
    const Environment isolated = isolatedEnvironment(home_.path(), currentEnvironment());
    if (!isolated.contains("TMPDIR")) {
        GTEST_SKIP() << "this system has none";
    }
    terminateAndWait(listOf(start("> ready; sleep 60")), milliseconds(10'000));
    EXPECT_FALSE(fs::exists(isolated.at("TMPDIR")));
}

TEST_F(ProcessShutdownTest, InTheBackgroundTheCallerDoesNotWait) {
    IsolatedProcess process = start("trap '' TERM; > ready; while :; do sleep 0.02; done");
    terminateInBackground(std::move(process), milliseconds(1'000));
    EXPECT_GE(running(), 1U);
    EXPECT_TRUE(waitUntil([&] { return running() == 0; }));
}

} // namespace
} // namespace quorvel
