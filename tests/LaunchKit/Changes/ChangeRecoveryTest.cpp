// Changes that are cut off at every system call, and what the next start makes of them.
#include "LaunchKit/Changes/ChangeRecovery.h"

#include "LaunchKit/Changes/ChangeJournal.h"
#include "LaunchKit/Changes/CloneRenaming.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/ItemIdentity.h"
#include "tests/LaunchKit/Changes/ChangedClones.h"
#include "tests/support/EveryStep.h"
#include "tests/support/ImmutableFile.h"
#include "tests/support/Sanitizer.h"

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
        std::string name = clone.config.displayName;
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
    if (isSanitized) {
        GTEST_SKIP() << "calls of the sanitizer's own would fail";
    }
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

// Like a drive that is not mounted at the next start, but later.
TEST_F(ChangeRecoveryTest, DataThatCantBeSeenIsNotTakenForDeleted) {
    const fs::path homes = home / "QuorvelInstances";
    int restored = 0;
    for (int step = 0;; ++step) {
        const fs::path wrapper = makeSmall();
        const auto record = InstanceRegistry().record(wrapper);
        const FaultOutcome outcome =
            withFault(step, {}, [&] { InstanceRegistry().remove(*record, true); });
        if (outcome.kill == Kill::notPermitted) {
            GTEST_SKIP() << "the kernel forbids tracing";
        }
        const bool hasData = fs::exists(homes / "Work/file");
        const bool wasAway = outcome.kill == Kill::done && !fs::exists(wrapper);
        fs::rename(homes, home / "unmounted");
        finishInterruptedChanges(InstanceRegistry().searchDirs());
        restored += wasAway && fs::exists(wrapper) ? 1 : 0;
        fs::rename(home / "unmounted", homes);
        finishInterruptedChanges(InstanceRegistry().searchDirs());
        if (hasData) {
            EXPECT_EQ(onlyClone(step).bundleURL, wrapper);
        }
        if (!fs::exists(wrapper)) {
            EXPECT_THAT(namesIn("QuorvelInstances"), ::testing::IsEmpty()) << step;
        }
        EXPECT_THAT(namesIn("QuorvelInstances"), ::testing::Each("Work")) << step;
        EXPECT_THAT(namesIn("Applications"), ::testing::Each("Work.app")) << step;
        if (outcome.kill == Kill::ended) {
            break;
        }
    }
    EXPECT_GT(restored, 0);
}

TEST_F(ChangeRecoveryTest, DataThatCantBeRemovedNowIsRemovedOrPutBackLater) {
    for (int step = 0;; ++step) {
        const fs::path wrapper = makeSmall();
        const auto record = InstanceRegistry().record(wrapper);
        FaultOutcome outcome;
        DeletedData data;
        {
            const ImmutableFile immutable(home / "QuorvelInstances/Work/file");
            if (!immutable.isSet()) {
                GTEST_SKIP() << "no file can be made immutable here";
            }
            outcome = withFault(step, {EIO}, [&] { InstanceRegistry().remove(*record, true); });
            finishInterruptedChanges(InstanceRegistry().searchDirs());
        }
        if (outcome.kill == Kill::notPermitted) {
            GTEST_SKIP() << "the kernel forbids tracing";
        }
        finishInterruptedChanges(InstanceRegistry().searchDirs());
        EXPECT_THAT(namesIn("QuorvelInstances"), ::testing::Each("Work")) << step;
        EXPECT_THAT(namesIn("Applications"), ::testing::Each("Work.app")) << step;
        if (outcome.kill == Kill::ended) {
            break;
        }
    }
}

TEST_F(ChangeRecoveryTest, ACallThatFailsIsNotTakenForDataThatWasReplaced) {
    constexpr int refused = 7;
    for (int step = 0;; ++step) {
        const auto record = InstanceRegistry().record(makeSmall());
        const FaultOutcome outcome = withFault(step, {EIO}, [&] {
            try {
                InstanceRegistry().remove(*record, true);
            } catch (const RefusedDeletion&) {
                std::_Exit(refused);
            }
        });
        if (outcome.kill == Kill::notPermitted) {
            GTEST_SKIP() << "the kernel forbids tracing";
        }
        EXPECT_NE(outcome.status, refused) << step;
        finishInterruptedChanges(InstanceRegistry().searchDirs());
        if (outcome.kill == Kill::ended) {
            break;
        }
    }
}

TEST_F(ChangeRecoveryTest, OtherHiddenFoldersBesideTheDataAreLeftAlone) {
    const fs::path wrapper = makeSmall();
    const auto identity = [](const fs::path& item) { return *identityOf(item); };
    const fs::path homes = home / "QuorvelInstances";
    makeWrapper(homes / "Other.app", minimalConfig("Other"));
    write(homes / "Data/file", "other");
    {
        StagedChange change(homes);
        ChangeJournal{.wrapper = "Other.app", .home = homes / "Data"}.keepWith(change);
        ASSERT_TRUE(change.withdraw("Other.app", "Other.app", identity(homes / "Other.app")));
        change.keep();
        StagedChange deletion(wrapper.parent_path());
        ChangeJournal{.wrapper = "Work.app", .home = homes / "Work"}.keepWith(deletion);
        deletion.keep();
    }
    finishInterruptedChanges(InstanceRegistry().searchDirs());
    EXPECT_THAT(namesIn("Applications"), ::testing::ElementsAre("Work.app"));
    EXPECT_EQ(namesIn("QuorvelInstances").size(), 3U);
    finishInterruptedChanges(homes);
    EXPECT_TRUE(InstanceRegistry().record(homes / "Other.app"));
    EXPECT_EQ(namesIn("QuorvelInstances").size(), 3U);
}

TEST_F(ChangeRecoveryTest, WhatTakesAPlaceDuringADeletionIsNotDeleted) {
    for (const char* name : {"Applications/Work.app", "QuorvelInstances/Work"}) {
        int refused = 0;
        // What is there before the first call is what is to be deleted.
        for (int step = 1;; ++step) {
            fs::remove_all(home / "aside");
            const auto record = InstanceRegistry().record(makeSmall());
            const fs::path place = home / name;
            const auto swap = [&] {
                if (fs::exists(place)) {
                    fs::rename(place, home / "aside");
                    write(place / "file", "mine");
                }
            };
            const FaultOutcome outcome = withFault(
                step, {.meanwhile = swap}, [&] { InstanceRegistry().remove(*record, true); });
            if (outcome.kill == Kill::notPermitted) {
                GTEST_SKIP() << "the kernel forbids tracing";
            }
            if (outcome.kill == Kill::ended) {
                break;
            }
            finishInterruptedChanges(InstanceRegistry().searchDirs());
            if (fs::exists(home / "aside")) {
                EXPECT_EQ(read(place / "file"), "mine") << name << " at " << step;
                refused += outcome.status;
            }
        }
        EXPECT_GT(refused, 0) << name;
    }
}

} // namespace
} // namespace quorvel
