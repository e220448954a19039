// Which of many processes represent an application.
#include "Platform/desktop/ApplicationTrees_linux.h"

#include "Platform/desktop/Workspace.h"
#include "Platform/processes/LockWaiters_linux.h"
#include "Platform/processes/Process.h"
#include "Platform/processes/ProcessFamily.h"
#include "tests/support/AppBundles.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/Waiting.h"

#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::SizeIs;
namespace fs = std::filesystem;

class ApplicationTreesTest : public ::testing::Test {
protected:
    ~ApplicationTreesTest() override { end(); }

    void end() {
        for (Process& process : started_) {
            process.sendSignal(SIGKILL);
            process.waitUntilExit();
        }
        started_.clear();
        // Their children outlive them.
        for (const RunningApplication& left : ours()) {
            ::kill(left.pid, SIGKILL);
        }
    }

    [[nodiscard]] std::vector<RunningApplication> ours() {
        auto found = workspace_->runningApplications().withBundleIdentifier("com.example.Thing");
        std::erase_if(found, [&](const RunningApplication& application) {
            return !application.bundleURL.string().starts_with(folder_.path().string());
        });
        return found;
    }

    pid_t start(const fs::path& bundle) {
        started_.push_back(Process::run({.executable = bundle / "Contents/MacOS" / bundle.stem()}));
        return started_.back().identifier();
    }

    // Starts an application that starts another process of its own through a shell elsewhere. Both
    // report that they are running.
    [[nodiscard]] fs::path appWithHelper() const {
        return makeScriptedAppBundle(
            folder_ / "Thing.app",
            "if [ -z \"$AGAIN\" ]; then AGAIN=1 /bin/sh -c \"'$0'; :\" & fi; echo x >> '" +
                reports().string() + "'; while :; do sleep 0.05; done");
    }

    [[nodiscard]] fs::path reports() const { return folder_ / "reports"; }
    [[nodiscard]] bool hasReported(std::size_t times) const {
        return waitUntil([&] { return read(reports()).size() >= 2 * times; });
    }

    TemporaryFolder folder_;
    std::unique_ptr<Workspace> workspace_ = makeSystemWorkspace();
    std::vector<Process> started_{};
};

TEST_F(ApplicationTreesTest, AnApplicationWithSeveralProcessesCountsOnceByItsTopmost) {
    const pid_t top = start(appWithHelper());
    ASSERT_TRUE(hasReported(2));
    // Briefly, a shell's child is a copy of the shell, and also counts as part of its tree.
    for (int look = 0; look < 20; ++look) {
        const auto found = ours();
        ASSERT_THAT(found, SizeIs(1));
        EXPECT_EQ(found[0].pid, top);
    }
}

TEST_F(ApplicationTreesTest, TwoStartedSeparatelyCountTwice) {
    const fs::path bundle = appWithHelper();
    const pid_t first = start(bundle);
    const pid_t second = start(bundle);
    ASSERT_TRUE(hasReported(4));
    const auto found = ours();
    ASSERT_THAT(found, SizeIs(2));
    EXPECT_EQ(std::set<pid_t>({found[0].pid, found[1].pid}), std::set<pid_t>({first, second}));
}

TEST_F(ApplicationTreesTest, AProcessThatWaitsForALockDoesNotCountIfAnotherHoldsIt) {
    const std::string lock = (folder_ / "lock").string();
    const fs::path bundle = makeAppBundle(folder_ / "Thing.app", {}, "/usr/bin/flock");
    const auto startLocking = [&] {
        started_.push_back(Process::run(
            {.executable = bundle / "Contents/MacOS/Thing", .arguments = {lock, "sleep", "600"}}));
        return started_.back().identifier();
    };
    const pid_t holder = startLocking();
    ASSERT_TRUE(waitUntil([&] { return !descendantsOf(holder).empty(); }));
    const pid_t waiter = startLocking();
    ASSERT_TRUE(waitUntil([&] { return processesWaitingForLocks().contains(waiter); }));
    auto found = ours();
    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(found[0].pid, holder);
    for (const ProcessIdentity& child : descendantsOf(holder)) {
        ::kill(child.pid, SIGKILL);
    }
    started_.front().waitUntilExit();
    found = ours();
    ASSERT_THAT(found, SizeIs(1)) << "alone, it counts even while it waits";
    EXPECT_EQ(found[0].pid, waiter);
    ASSERT_TRUE(waitUntil([&] { return !descendantsOf(waiter).empty(); })) << "it has the lock";
    for (const ProcessIdentity& child : descendantsOf(waiter)) {
        ::kill(child.pid, SIGKILL);
    }
}

} // namespace
} // namespace quorvel
