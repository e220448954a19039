// Changes that are cut off at every system call, and what the next start makes of them.
#include "LaunchKit/ChangeRecovery.h"

#include "LaunchKit/CloneRenaming.h"
#include "Platform/files/FileSystem.h"
#include "tests/LaunchKit/ChangedClones.h"
#include "tests/support/EveryStep.h"

#include <cerrno>
#include <gmock/gmock.h>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

// A sample: `scripts/test-faults` tries every call and error.
constexpr int stride = 3;

class ChangeRecoveryTest : public ::testing::Test, protected ChangedClones {
protected:
    // A wrapper without a runner takes fewer steps to copy.
    fs::path makeSmall() const {
        fs::remove_all(home / "Applications");
        fs::remove_all(home / "QuorvelInstances");
        write(home / "QuorvelInstances/Work/file", "data");
        InstanceConfig config = minimalConfig();
        config.kind = ShortcutKind::web;
        return makeWrapper(home / "Applications/Work.app", config);
    }

    static void renameWithData(const fs::path& wrapper) {
        (void)renameClone(wrapper, {.name = "Office", .movesData = true});
    }

    // Returns the only clone's name after the next start, which must have left nothing else.
    [[nodiscard]] std::string nameAfterRecovery(int step) const {
        (void)onlyClone(step);
        finishInterruptedChanges(InstanceRegistry().searchDirs());
        const InstanceRecord clone = onlyClone(step);
        const std::string name = clone.config.displayName;
        EXPECT_EQ(clone.bundleURL.filename(), name + ".app") << step;
        EXPECT_THAT(namesIn("Applications"), ::testing::ElementsAre(name + ".app")) << step;
        EXPECT_THAT(namesIn("QuorvelInstances"), ::testing::ElementsAre(name)) << step;
        return name;
    }

    // Returns the only clone, whose data must be where it says.
    [[nodiscard]] InstanceRecord onlyClone(int step) const {
        const auto clones = InstanceRegistry().list();
        EXPECT_EQ(clones.size(), 1U) << step;
        if (clones.empty()) {
            return {};
        }
        EXPECT_EQ(read(fs::path(clones.front().config.resolvedHome()) / "file"), "data") << step;
        return clones.front();
    }

    [[nodiscard]] std::vector<std::string> namesIn(const char* folder) const {
        return directoryEntries(home / folder).value();
    }
};

TEST_F(ChangeRecoveryTest, ARenamingIsCompletedOrTakenBackWhereverItIsCutOff) {
    bool wasOld = false;
    bool wasNew = false;
    for (int step = 0;; step += stride) {
        const fs::path wrapper = makeSmall();
        const FaultOutcome outcome = withFault(step, {}, [&] { renameWithData(wrapper); });
        if (outcome.kill == Kill::notPermitted) {
            GTEST_SKIP() << "the kernel forbids tracing";
        }
        const std::string name = nameAfterRecovery(step);
        (name == "Work" ? wasOld : wasNew) = true;
        if (outcome.kill == Kill::ended) {
            EXPECT_EQ(name, "Office");
            break;
        }
    }
    EXPECT_TRUE(wasOld && wasNew);
}

TEST_F(ChangeRecoveryTest, ARenamingInWhichACallFailsIsMadeOrReportedAndTakenBack) {
    for (const int error : {EIO, ENOSPC}) {
        for (int step = error % stride;; step += 2 * stride) {
            const fs::path wrapper = makeSmall();
            const FaultOutcome outcome = withFault(step, {error}, [&] { renameWithData(wrapper); });
            if (outcome.kill == Kill::notPermitted) {
                GTEST_SKIP() << "the kernel forbids tracing";
            }
            EXPECT_EQ(nameAfterRecovery(step), outcome.status == 0 ? "Office" : "Work") << step;
            if (outcome.kill == Kill::ended) {
                break;
            }
        }
    }
}

TEST_F(ChangeRecoveryTest, ADeletionIsCompletedOrTakenBackWhereverItIsCutOff) {
    bool wasKept = false;
    for (int step = 0;; ++step) {
        const fs::path wrapper = makeSmall();
        const auto before = treeOf(home.path());
        const auto record = InstanceRegistry().record(wrapper);
        const FaultOutcome outcome =
            withFault(step, {}, [&] { InstanceRegistry().remove(*record, true); });
        if (outcome.kill == Kill::notPermitted) {
            GTEST_SKIP() << "the kernel forbids tracing";
        }
        finishInterruptedChanges(InstanceRegistry().searchDirs());
        const bool isKept = fs::exists(wrapper);
        wasKept = wasKept || isKept;
        if (isKept) {
            EXPECT_TRUE(treeOf(home.path()) == before) << step;
        } else {
            EXPECT_THAT(namesIn("Applications"), ::testing::IsEmpty()) << step;
            EXPECT_THAT(namesIn("QuorvelInstances"), ::testing::IsEmpty()) << step;
        }
        if (outcome.kill == Kill::ended) {
            EXPECT_FALSE(isKept);
            break;
        }
    }
    EXPECT_TRUE(wasKept);
}

} // namespace
} // namespace quorvel
