#include "Platform/shutdown/TreeShutdown.h"

#include "Platform/processes/Process.h"
#include "Platform/processes/ProcessStat_linux.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/Waiting.h"

#include <csignal>
#include <fstream>
#include <gmock/gmock.h>
#include <sys/prctl.h>
#include <sys/wait.h>

namespace quorvel::testing {
namespace {

using ::testing::Contains;

ProcessIdentity identityOf(pid_t pid) {
    return {pid, processStat(pid).value().started};
}

pid_t numberIn(const std::filesystem::path& file) {
    pid_t number = 0;
    std::ifstream(file) >> number;
    return number;
}

// This process is the runner. In a home that a clone does not change, what the runner has adopted
// looks like the user's own, except that it was seen below the target before.
TEST(TreeShutdownTest, WhatWasSeenBelowTheTargetIsTheClonesOnceTheRunnerHasAdoptedIt) {
    const TemporaryFolder folder;
    const std::string file = (folder / "child").string();
    ASSERT_EQ(::prctl(PR_SET_CHILD_SUBREAPER, 1UL), 0);
    Process target =
        Process::run({.executable = "/bin/sh",
                      .arguments = {"-c", "setsid sh -c 'echo $$ > " + file +
                                              "; exec sleep 600' & while :; do sleep 0.02; done"}});
    ASSERT_TRUE(waitUntil([&] { return numberIn(file) != 0; }));
    const ProcessIdentity child = identityOf(numberIn(file));
    TreeShutdown shutdown({identityOf(::getpid())}, {});
    EXPECT_THAT(shutdown.running(), Contains(child));
    target.sendSignal(SIGKILL);
    target.waitUntilExit();
    EXPECT_TRUE(waitUntil([&] { return processStat(child.pid)->parent == ::getpid(); }));
    EXPECT_THAT(shutdown.running(), Contains(child));
    ::kill(child.pid, SIGKILL);
    ::waitpid(child.pid, nullptr, 0);
    ::prctl(PR_SET_CHILD_SUBREAPER, 0UL);
}

} // namespace
} // namespace quorvel::testing
