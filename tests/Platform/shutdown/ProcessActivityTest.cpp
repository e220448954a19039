#include "Platform/shutdown/ProcessActivity.h"

#include "Platform/processes/Process.h"
#include "Platform/processes/ProcessFamily.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/Waiting.h"

#include <csignal>
#include <gtest/gtest.h>

namespace quorvel {
namespace {

using namespace testing;
using namespace std::chrono_literals;
namespace fs = std::filesystem;

/// A shell with this script and everything that it starts, which end with this object.
class Family {
public:
    explicit Family(const std::string& script, Environment environment = currentEnvironment())
        : shell_(Process::run({.executable = "/bin/sh",
                               .arguments = {"-c", script},
                               .environment = std::move(environment)})) {}
    Family(const Family&) = delete;
    Family& operator=(const Family&) = delete;
    ~Family() {
        const auto members = descendantsOf(pid());
        shell_.sendSignal(SIGKILL);
        for (const ProcessIdentity& member : members) {
            ::kill(member.pid, SIGKILL);
        }
        shell_.waitUntilExit();
    }

    [[nodiscard]] pid_t pid() const { return shell_.identifier(); }
    [[nodiscard]] ProcessActivity activity() const { return activityOf(pid()); }

private:
    Process shell_;
};

TEST(ProcessActivityTest, OneThatComputesWantsToRunAndUsesTime) {
    const Family family("while :; do :; done");
    EXPECT_TRUE(waitUntil([&] { return family.activity().cpuTime > 100ms; }));
    EXPECT_TRUE(family.activity().wantsToRun);
    EXPECT_FALSE(family.activity().waitsForLock);
}

TEST(ProcessActivityTest, DescendantsCount) {
    const Family family("(while :; do :; done) & sleep 600");
    EXPECT_TRUE(waitUntil([&] { return family.activity().cpuTime > 100ms; }));
    EXPECT_TRUE(family.activity().wantsToRun);
}

TEST(ProcessActivityTest, OneThatSleepsUsesNothing) {
    const Family family("exec sleep 600");
    EXPECT_TRUE(waitUntil([&] { return !family.activity().wantsToRun; }));
    EXPECT_LT(family.activity().cpuTime, 1000ms);
}

TEST(ProcessActivityTest, OnlyTheSecondThatTakesALockWaits) {
    const TemporaryFolder folder;
    const std::string lock = (folder / "lock").string();
    const Family first("exec flock " + lock + " sh -c '> " + (folder / "held").string() +
                       "; exec sleep 600'");
    ASSERT_TRUE(waitUntil([&] { return fs::exists(folder / "held"); }));
    const Family second("flock " + lock + " sleep 600; exit 1");
    EXPECT_TRUE(waitUntil([&] { return second.activity().waitsForLock; }));
    EXPECT_FALSE(first.activity().waitsForLock);
}

TEST(ProcessActivityTest, OneThatHasEndedDoesNothing) {
    Process process = Process::run({.executable = "/bin/true"});
    process.waitUntilExit();
    const ProcessActivity activity = activityOf(process.identifier());
    EXPECT_EQ(activity.cpuTime, 0ms);
    EXPECT_FALSE(activity.wantsToRun);
    EXPECT_FALSE(activity.waitsForLock);
}

TEST(ProcessActivityTest, AProgramIsFoundByItsFileAndItsHome) {
    const TemporaryFolder home;
    fs::copy_file("/bin/sleep", home / "program");
    fs::copy_file("/bin/sleep", home / "other");
    fs::create_symlink(home / "program", home / "link");
    Environment environment = currentEnvironment();
    environment["HOME"] = home.path();
    const Family family("exec " + (home / "program").string() + " 600", environment);
    EXPECT_TRUE(waitUntil([&] { return isRunningWithHome(home / "program", home.path()); }));
    EXPECT_TRUE(isRunningWithHome(home / "link", home.path()));
    EXPECT_FALSE(isRunningWithHome(home / "other", home.path()));
    EXPECT_FALSE(isRunningWithHome(home / "program", home.path().string() + "2"));
    EXPECT_FALSE(isRunningWithHome(home / "missing", home.path()));
}

} // namespace
} // namespace quorvel
