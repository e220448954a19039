// Deletions that are cut off, at every system call that removes something.
#include "LaunchKit/Changes/ChangeRecovery.h"
#include "LaunchKit/Changes/CloneDeletion.h"
#include "LaunchKit/Changes/RequestCheck.h"
#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/InstanceRegistry.h"
#include "LaunchKit/WrapperGenerator.h"
#include "Platform/files/ItemIdentity.h"
#include "Platform/files/PlatformError.h"
#include "tests/support/AppBundles.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/UnprivilegedUser.h"

#include <csignal>
#include <gtest/gtest.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

enum class End { killed, finished, notPermitted };

// Runs `work` in a child process that is killed right before its `count`th removal of an item.
End killedBeforeRemoval(int count, const std::function<void()>& work) {
    const pid_t child = ::fork();
    if (child == 0) {
        if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) {
            std::_Exit(2);
        }
        ::raise(SIGSTOP);
        work();
        std::_Exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    if (!WIFSTOPPED(status)) {
        return End::notPermitted;
    }
    ::ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    while (true) {
        ::ptrace(PTRACE_SYSCALL, child, nullptr, nullptr);
        ::waitpid(child, &status, 0);
        if (!WIFSTOPPED(status)) {
            return End::finished;
        }
        __ptrace_syscall_info info{};
        if (::ptrace(PTRACE_GET_SYSCALL_INFO, child, sizeof info, &info) > 0 &&
            info.op == PTRACE_SYSCALL_INFO_ENTRY && info.entry.nr == SYS_unlinkat && --count == 0) {
            ::kill(child, SIGKILL);
            ::waitpid(child, &status, 0);
            return End::killed;
        }
    }
}

class CutOffDeletionTest : public ::testing::Test {
protected:
    InstanceRecord makeClone(int files) const {
        InstanceConfig config = minimalConfig();
        const fs::path wrapper = makeWrapper(home_ / "Applications/Work.app", config);
        for (const char* file :
             {"MacOS/runner", "Resources/AppIcon.icns", "Info.plist", "PkgInfo"}) {
            write(wrapper / "Contents" / file, "x");
        }
        for (int number = 0; number < files; ++number) {
            write(data() / ("folder" + std::to_string(number % 7)) / std::to_string(number), "x");
        }
        return {wrapper, config};
    }

    [[nodiscard]] fs::path data() const { return home_ / "QuorvelInstances/Work"; }

    // Deletes a clone with that many files, interrupted before a removal, and then what is left of
    // it.
    End cutOffAndRetry(int files, int before) const {
        const InstanceRecord record = makeClone(files);
        const End end =
            killedBeforeRemoval(before, [&] { InstanceRegistry().remove(record, true); });
        const auto listed = InstanceRegistry().list();
        EXPECT_TRUE(listed.size() == 1 || !fs::exists(data())) << "orphaned, at " << before;
        for (const InstanceRecord& left : listed) {
            EXPECT_EQ(left.config.displayName, "Work");
            InstanceRegistry().remove(left, true);
        }
        EXPECT_FALSE(fs::exists(data())) << before;
        EXPECT_TRUE(InstanceRegistry().list().empty()) << before;
        // An empty shell at the most is left when all but that is gone.
        fs::remove_all(record.bundleURL);
        return end;
    }

    TemporaryHome home_;
};

TEST_F(CutOffDeletionTest, LeavesACloneThatCanBeDeletedAgainWhereverItIsCutOff) {
    constexpr int files = 12;
    int before = 1;
    for (End end = End::killed; end == End::killed; ++before) {
        end = cutOffAndRetry(files, before);
        if (end == End::notPermitted) {
            GTEST_SKIP() << "the kernel forbids tracing";
        }
    }
    EXPECT_GT(before, files) << "cut off at every item";
}

TEST_F(CutOffDeletionTest, LeavesACloneThatCanBeDeletedAgainInTheMidstOfAThousandFiles) {
    for (const int before : {6, 501, 1000}) {
        const End end = cutOffAndRetry(1000, before);
        if (end == End::notPermitted) {
            GTEST_SKIP() << "the kernel forbids tracing";
        }
        EXPECT_EQ(end, End::killed) << before;
    }
}

TEST_F(CutOffDeletionTest, ADamagedCloneIsWholeOrGoneWhereverItIsCutOff) {
    const fs::path folder = home_ / "Applications";
    int before = 1;
    for (End end = End::killed; end == End::killed; ++before) {
        const fs::path wrapper = makeClone(0).bundleURL;
        write(wrapper / "Contents/Resources/instance.json", "{");
        const auto whole = treeOf(folder);
        end = killedBeforeRemoval(
            before, [&] { removeDamagedWrapper(wrapper, identityOf(wrapper).value()); });
        if (end == End::notPermitted) {
            GTEST_SKIP() << "the kernel forbids tracing";
        }
        finishInterruptedChanges(folder);
        const auto left = treeOf(folder);
        EXPECT_TRUE(left.empty() || left == whole) << before;
        fs::remove_all(wrapper);
    }
    EXPECT_GT(before, 5);
}

TEST_F(CutOffDeletionTest, NothingOfADamagedCloneIsRemovedIfAFolderInItIsClosed) {
    const TemporaryFolder folder;
    EXPECT_TRUE(asUnprivilegedUser(folder.path(), [&] {
        const fs::path wrapper = makeWrapper(folder / "Work.app", minimalConfig());
        for (const char* file : {"MacOS/runner", "Info.plist", "PkgInfo"}) {
            write(wrapper / "Contents" / file, "x");
        }
        write(wrapper / "Contents/Resources/instance.json", "{");
        const auto whole = treeOf(folder.path());
        fs::permissions(wrapper / "Contents/MacOS", fs::perms{0555});
        try {
            removeDamagedWrapper(wrapper, identityOf(wrapper).value());
        } catch (const PlatformError&) {
            return treeOf(folder.path()) == whole;
        }
        return false;
    }));
}

TEST_F(CutOffDeletionTest, AReplacementLeavesWhatCanBeReplacedWhereverItIsCutOff) {
    WrapperFactory::Request request;
    request.kind = ShortcutKind::web;
    request.displayName = "Work";
    WrapperGenerator::Options options{minimalConfig(), runnerProgram()};
    options.config.kind = ShortcutKind::web;
    const fs::path folder = home_ / "Applications";
    int before = 1;
    for (End end = End::killed; end == End::killed; ++before) {
        const fs::path wrapper = WrapperGenerator().generate(folder, options);
        end = killedBeforeRemoval(before,
                                  [&] { (void)WrapperGenerator().generate(folder, options); });
        if (end == End::notPermitted) {
            GTEST_SKIP() << "the kernel forbids tracing";
        }
        EXPECT_NO_THROW(validateRequest(request, std::nullopt, {.existingClone = true})) << before;
        // The parts that identify a clone are removed before its configuration.
        EXPECT_TRUE(InstanceRegistry().record(wrapper) ||
                    !fs::exists(wrapper / "Contents/MacOS/runner"))
            << before;
    }
    EXPECT_GT(before, 5);
}

} // namespace
} // namespace quorvel
