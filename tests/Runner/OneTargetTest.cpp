// One target per instance home, even if the runner is killed.
#include "LaunchKit/Homes/HomeLock.h"
#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/InstanceRegistry.h"
#include "Platform/files/FileSystem.h"
#include "Platform/processes/ProcessFamily.h"
#include "tests/Runner/RunnerFixture.h"
#include "tests/support/SmallDisk.h"
#include "tests/support/UnprivilegedUser.h"
#include "tests/support/Waiting.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <gmock/gmock.h>
#include <sys/mount.h>
#include <sys/stat.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::HasSubstr;
namespace fs = std::filesystem;

const std::string inUse = "quorvel-runner: “Work” is still running, or a clone that shares its "
                          "data folder is, or a program that it started\n";

class OneTargetTest : public ScriptedRunnerFixture {
protected:
    [[nodiscard]] fs::path lockFile() const { return cloneHome() / homeLockName; }

    // The runner is the child's parent once the target, which started it, has ended.
    [[nodiscard]] bool isAdoptedBy(const Process& runner) const {
        const std::string stat = "/proc/" + std::to_string(numberIn(at("child"))) + "/stat";
        const std::string parent = " " + std::to_string(runner.identifier()) + " ";
        return waitUntil([&] { return read(stat).find(parent) != std::string::npos; });
    }

    // Returns the status of a runner that should end by itself, or -1 if it does not.
    [[nodiscard]] int statusOf(const fs::path& bundle) const {
        Process runner = start(bundle);
        if (!waitUntil([&] { return !runner.isRunning(); }, std::chrono::seconds(5))) {
            runner.terminate();
            return -1;
        }
        return runner.waitUntilExit();
    }

    static bool ends(pid_t pid) {
        ::kill(pid, SIGKILL);
        return waitUntil([&] { return !fs::exists("/proc/" + std::to_string(pid) + "/exe"); });
    }
};

TEST_F(OneTargetTest, ACloneThatIsDeletedWhileItRunsLeavesNoTemporaryFolder) {
    for (const bool isDeleted : {false, true}) {
        const fs::path bundle = wrapper(scripted("echo \"$TMPDIR\" > " + at("temporary").string() +
                                                 "; > \"$TMPDIR/file\"; echo $$ > " +
                                                 at("pid").string() + "; exec sleep 600"));
        Process runner = start(bundle);
        ASSERT_TRUE(targetRuns());
        const std::string line = read(at("temporary"));
        const fs::path temporary = line.substr(0, line.size() - 1);
        if (temporary.empty()) {
            GTEST_SKIP() << "this system has none";
        }
        if (isDeleted) {
            InstanceRegistry().remove(InstanceRegistry().record(bundle).value(), true);
            EXPECT_TRUE(fs::exists(temporary / "file")) << "it is in use";
        }
        runner.terminate();
        runner.waitUntilExit();
        EXPECT_EQ(fs::exists(temporary), !isDeleted);
        fs::remove(at("pid"));
    }
}

TEST_F(OneTargetTest, ATargetWhoseRunnerWasKilledKeepsItsHome) {
    const fs::path bundle = wrapper(lasting());
    Process runner = start(bundle);
    ASSERT_TRUE(targetRuns());
    const pid_t target = numberIn(at("pid"));
    runner.sendSignal(SIGKILL);
    EXPECT_EQ(runner.waitUntilExit(), 128 + SIGKILL);
    ASSERT_EQ(::kill(target, 0), 0) << "the target outlives its runner";

    EXPECT_EQ(statusOf(bundle), 75);
    EXPECT_EQ(read(errors()), inUse);
    EXPECT_EQ(log(), inUse);
    EXPECT_EQ(numberIn(at("pid")), target) << "no second one was started";

    ASSERT_TRUE(ends(target));
    fs::remove(at("pid"));
    Process again = start(bundle);
    EXPECT_TRUE(targetRuns()) << "nothing stale is left behind: " << read(errors());
    again.terminate();
    EXPECT_EQ(again.waitUntilExit(), 128 + SIGTERM);
}

TEST_F(OneTargetTest, ClonesThatShareAHomeRunOneAtATime) {
    InstanceConfig other = lasting();
    other.displayName = "Home";
    Process first = start(wrapper(other));
    ASSERT_TRUE(targetRuns());
    other.displayName = "Work";
    other.instanceHome = (home_ / "I/").string(); // the same folder, spelled differently
    const fs::path second = wrapper(other);
    EXPECT_EQ(statusOf(second), 75);
    EXPECT_EQ(read(errors()), inUse);
    first.terminate();
    EXPECT_EQ(first.waitUntilExit(), 128 + SIGTERM);
    fs::remove(at("pid"));
    Process later = start(second);
    EXPECT_TRUE(targetRuns());
    later.terminate();
    later.waitUntilExit();
}

TEST_F(OneTargetTest, ClonesWithDifferentHomesRunSideBySide) {
    InstanceConfig config = lasting();
    Process first = start(wrapper(config));
    ASSERT_TRUE(targetRuns());
    fs::remove(at("pid"));
    config.displayName = "Home";
    config.instanceHome = "~/J";
    Process second = start(wrapper(config));
    EXPECT_TRUE(targetRuns());
    for (Process* runner : {&first, &second}) {
        EXPECT_TRUE(runner->isRunning());
        runner->terminate();
        runner->waitUntilExit();
    }
}

TEST_F(OneTargetTest, AChildInTheBackgroundStillHoldsTheHomeIfTheRunnerIsKilled) {
    const fs::path bundle = wrapper(scripted(detached("sleep 600")));
    Process runner = start(bundle);
    ASSERT_TRUE(childRuns());
    runner.sendSignal(SIGKILL);
    runner.waitUntilExit();
    EXPECT_EQ(statusOf(bundle), 75);
    ASSERT_TRUE(ends(numberIn(at("child"))));
    write(at("Thing.app/Contents/MacOS/Thing"), "#!/bin/sh\n");
    EXPECT_EQ(statusOf(bundle), 0);
}

// Such as a browser that goes on in another process after a crash.
TEST_F(OneTargetTest, ARunnerStaysUntilWhatDetachedItselfHasEndedToo) {
    // It is in a session of its own, its parent ends, and it has closed what it inherited.
    const fs::path bundle = wrapper(scripted(detached("sleep 600 30>&-") + "; exit 7"));
    Process runner = start(bundle);
    ASSERT_TRUE(childRuns());
    EXPECT_TRUE(isAdoptedBy(runner));
    EXPECT_TRUE(runner.isRunning());
    EXPECT_EQ(statusOf(bundle), 75) << "the home is still used";
    ASSERT_TRUE(ends(numberIn(at("child"))));
    EXPECT_EQ(runner.waitUntilExit(), 7) << "the target's own status";
    fs::remove(at("child"));
}

TEST_F(OneTargetTest, WhatDetachedItselfIsStoppedWithTheTarget) {
    const fs::path bundle = wrapper(scripted(detached("sleep 600") + "; exec sleep 600"));
    Process runner = start(bundle);
    ASSERT_TRUE(childRuns());
    runner.terminate();
    EXPECT_EQ(runner.waitUntilExit(), 128 + SIGTERM);
    EXPECT_FALSE(fs::exists("/proc/" + std::to_string(numberIn(at("child"))) + "/exe"));
}

TEST_F(OneTargetTest, WhatDetachedItselfIsStoppedAfterTheTarget) {
    const fs::path bundle = wrapper(scripted(detached("sleep 600")));
    Process runner = start(bundle);
    ASSERT_TRUE(childRuns());
    ASSERT_TRUE(isAdoptedBy(runner));
    ASSERT_TRUE(waitUntil([&] { return cloneProcesses(runner.identifier()).size() == 1; }))
        << "the target has ended";
    runner.sendSignal(SIGHUP);
    EXPECT_EQ(runner.waitUntilExit(), 0);
    EXPECT_FALSE(fs::exists("/proc/" + std::to_string(numberIn(at("child"))) + "/exe"));
}

// Such as the user's browser, in which a link was opened.
TEST_F(OneTargetTest, WhatHasTheUsersHomeIsNotPartOfTheClone) {
    const std::string ofTheUser = std::string("HOME='") + std::getenv("HOME") + "'; export HOME; ";
    const fs::path bundle =
        wrapper(scripted("(" + ofTheUser + detached("sleep 600 30>&-") + "); echo $$ > " +
                         at("pid").string() + "; exec sleep 600"));
    Process runner = start(bundle);
    ASSERT_TRUE(targetRuns());
    ASSERT_TRUE(childRuns());
    runner.terminate();
    EXPECT_EQ(runner.waitUntilExit(), 128 + SIGTERM);
    EXPECT_EQ(::kill(numberIn(at("child")), 0), 0) << "it goes on";
    EXPECT_EQ(statusOf(wrapper(scripted("exit 0"))), 0) << "and the home is free";
}

TEST_F(OneTargetTest, WhatACommandLeavesBehindIsNotWaitedFor) {
    InstanceConfig config = configOf(ShortcutKind::command);
    config.commandPath = "/bin/sh";
    config.commandArgs = {"-c", detached("sleep 600")};
    EXPECT_EQ(statusOf(wrapper(config)), 0);
    ASSERT_TRUE(childRuns());
    EXPECT_EQ(::kill(numberIn(at("child")), 0), 0);
}

TEST_F(OneTargetTest, WhatDetachedItselfAndEndsLeavesNoZombie) {
    const fs::path bundle = wrapper(
        scripted(detached("true") + "; echo $$ > " + at("pid").string() + "; exec sleep 600"));
    Process runner = start(bundle);
    ASSERT_TRUE(targetRuns());
    ASSERT_TRUE(childRuns());
    EXPECT_TRUE(
        waitUntil([&] { return !fs::exists("/proc/" + std::to_string(numberIn(at("child")))); }));
    EXPECT_TRUE(runner.isRunning());
    runner.terminate();
    runner.waitUntilExit();
}

TEST_F(OneTargetTest, AScriptMayRedirectLowNumbersWithoutLosingTheHome) {
    const fs::path bundle =
        wrapper(scripted("exec 3>/dev/null 4>/dev/null 9>/dev/null 3>&- 9>&-; echo $$ > " +
                         at("pid").string() + "; exec sleep 600"));
    Process runner = start(bundle);
    ASSERT_TRUE(targetRuns());
    runner.sendSignal(SIGKILL);
    runner.waitUntilExit();
    EXPECT_EQ(statusOf(bundle), 75);
}

TEST_F(OneTargetTest, TheTargetInheritsOnlyTheLocksDescriptor) {
    EXPECT_EQ(run(appConfig({"descriptors"})), 0);
    EXPECT_EQ(log(), "0\n1\n2\n30\n");
    EXPECT_EQ(run(scripted("readlink /proc/self/fd/30 > " + at("path").string())), 0);
    EXPECT_EQ(read(at("path")), lockFile().string() + "\n");
}

TEST_F(OneTargetTest, TheLockFileIsHiddenAndForTheUserOnly) {
    EXPECT_EQ(run(appConfig({"exit", "0"})), 0);
    struct stat status {};
    ASSERT_EQ(::lstat(lockFile().c_str(), &status), 0);
    EXPECT_TRUE(S_ISREG(status.st_mode));
    EXPECT_EQ(status.st_mode & 07777, 0600U);
    EXPECT_EQ(status.st_size, 0);
    EXPECT_TRUE(lockFile().filename().string().starts_with('.'));
}

TEST_F(OneTargetTest, ALinkInPlaceOfTheLockIsNotFollowed) {
    fs::create_directories(cloneHome());
    write(at("foreign"), "kept");
    const fs::path bundle = wrapper(appConfig({"write", at("started"), "x"}));
    fs::create_symlink(at("foreign"), lockFile());
    EXPECT_EQ(statusOf(bundle), 71);
    EXPECT_EQ(read(errors()),
              "quorvel-runner: “.quorvel-lock” couldn’t be locked: it is a symbolic link\n");
    EXPECT_EQ(read(at("foreign")), "kept");
    fs::remove(lockFile());
    ASSERT_EQ(::mkfifo(lockFile().c_str(), 0600), 0);
    EXPECT_EQ(statusOf(bundle), 71);
    EXPECT_THAT(read(errors()), HasSubstr("it is not a regular file"));
    EXPECT_FALSE(fs::exists(at("started")));
}

// Starts a clone twice whose home has no space for the lock file.
TEST_F(OneTargetTest, OnAFullDiskAHomeIsStillUsedByOneTargetAtATime) {
    fs::create_directories(cloneHome());
    const fs::path bundle = wrapper(lasting());
    const auto problem = onSmallDisk(cloneHome(), "size=4k,nr_inodes=1", [&]() -> std::string {
        Process runner = start(bundle);
        const bool runs = targetRuns();
        const int second = statusOf(bundle);
        // When there is space again, the lock on the folder still counts.
        ::mount("none", cloneHome().c_str(), "tmpfs", MS_REMOUNT, "size=64k,nr_inodes=10");
        const int third = statusOf(bundle);
        runner.terminate();
        runner.waitUntilExit();
        const bool again = statusOf(wrapper(scripted("exit 0"))) == 0;
        return runs && second == 75 && third == 75 && again
                   ? ""
                   : std::to_string(runs) + " " + std::to_string(second) + " " +
                         std::to_string(third) + " " + std::to_string(again) + read(errors());
    });
    if (!problem) {
        GTEST_SKIP() << "no file system may be mounted here";
    }
    EXPECT_EQ(*problem, "");
}

TEST_F(OneTargetTest, AHomeThatCantBeWrittenIsStillUsedByOneTargetAtATime) {
    InstanceConfig config = minimalConfig();
    config.instanceHome = at("I").string();
    EXPECT_TRUE(asUnprivilegedUser(folder_.path(), [&] {
        fs::create_directories(config.resolvedHome());
        fs::permissions(config.resolvedHome(), fs::perms{0555});
        std::optional<FileLock> first = lockHome(config);
        if (!first) {
            return false;
        }
        try {
            (void)lockHome(config);
            return false;
        } catch (const HomeInUse&) {
            first.reset();
        }
        return lockHome(config).has_value();
    }));
}

TEST_F(OneTargetTest, ACommandHoldsNoLock) {
    InstanceConfig config = configOf(ShortcutKind::command);
    config.commandPath = helperProgram();
    config.commandArgs = {"descriptors"};
    EXPECT_EQ(run(config), 0);
    EXPECT_EQ(log(), "0\n1\n2\n");
    EXPECT_FALSE(itemOrLinkExists(lockFile()));
}

} // namespace
} // namespace quorvel
