#include "QuorvelApp/model/CloneChanges.h"

#include "LaunchKit/Changes/ClonesLock.h"
#include "LaunchKit/Homes/HomeLock.h"
#include "tests/QuorvelApp/AppModelFixture.h"
#include "tests/QuorvelApp/RealClones.h"

#include <gmock/gmock.h>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class CloneChangesTest : public AppModelFixture {
protected:
    void rename(const InstanceRecord& clone, const std::string& name) {
        resultOf(changes.rename(clone, name));
    }
    void refresh(const std::vector<InstanceRecord>& clones) {
        resultOf(changes.refresh(clones, progress));
    }

    CloneChanges changes{model()};
    std::shared_ptr<ChangeProgress> progress = std::make_shared<ChangeProgress>();
};

TEST_F(CloneChangesTest, ARenamedCloneIsListedAndItsNewIdentityReported) {
    const InstanceRecord work = makeWebClone("Work");
    model().reload();
    std::vector<std::string> said;
    QObject::connect(&changes, &CloneChanges::renamed, &model(),
                     [&](const std::string& from, const std::string& to) {
                         said = {from, to};
                         EXPECT_NE(model().clone(to), nullptr) << "it is listed";
                     });
    rename(work, "Play");
    EXPECT_THAT(names(), ElementsAre("Play"));
    EXPECT_THAT(said, ElementsAre(work.id(), model().clones().front().id()));
    EXPECT_EQ(model().clones().front().config.instanceHome, work.config.instanceHome);
    EXPECT_EQ(stubbed.clonesInMenu, 1);
    EXPECT_FALSE(model().lastError());
    EXPECT_FALSE(model().statusMessage());
}

TEST_F(CloneChangesTest, ANameThatCantBeUsedChangesNothing) {
    const InstanceRecord work = makeWebClone("Work");
    (void)makeWebClone("Play");
    const auto before = treeOf(folder);
    for (const std::string name : {"Play", "a/b", "..", "a\x01"}) {
        model().setLastError(std::nullopt);
        rename(work, name);
        EXPECT_THAT(model().lastError().value_or(""), StartsWith("Couldn't rename: ")) << name;
        EXPECT_TRUE(treeOf(folder) == before) << name;
        EXPECT_THAT(names(), ElementsAre("Play", "Work"));
        EXPECT_FALSE(changes.isRenaming(work));
    }
}

TEST_F(CloneChangesTest, ACloneThatWasDeletedMeanwhileIsAnErrorAndNoLongerListed) {
    const InstanceRecord work = makeWebClone("Work");
    model().reload();
    fs::remove_all(work.bundleURL);
    rename(work, "Play");
    EXPECT_THAT(model().lastError().value_or(""), StartsWith("Couldn't rename: "));
    EXPECT_TRUE(model().clones().empty());
    EXPECT_FALSE(fs::exists(folder / "Play.app"));
}

TEST_F(CloneChangesTest, ACloneThatRunsIsRenamedAndTheUserToldWhenItTakesEffect) {
    const InstanceRecord work = makeWebClone("Work");
    const auto running = lockHome(work.config);
    rename(work, "Play");
    EXPECT_THAT(names(), ElementsAre("Play"));
    EXPECT_EQ(model().statusMessage(),
              "“Play” is running. The change takes effect at its next start.");
}

TEST_F(CloneChangesTest, RenamingWaitsForAnotherChangeInTheBackground) {
    const InstanceRecord work = makeWebClone("Work");
    auto lock = lockClones(folder);
    const QFuture<void> renaming = changes.rename(work, "Play");
    EXPECT_TRUE(changes.isRenaming(work));
    EXPECT_FALSE(eventually([&] { return renaming.isFinished(); }, 100ms));
    lock.reset();
    resultOf(renaming);
    EXPECT_FALSE(changes.isRenaming(work));
    EXPECT_THAT(names(), ElementsAre("Play"));
}

TEST_F(CloneChangesTest, RefreshesWhatIsStaleAndSaysHowMany) {
    const InstanceRecord home_ = makeWebClone("Home");
    const InstanceRecord work = makeWebClone("Work");
    ageRunner(work);
    QFuture<void> refreshing = changes.refresh({home_, work}, progress);
    EXPECT_TRUE(changes.isRefreshing());
    resultOf(refreshing);
    EXPECT_FALSE(changes.isRefreshing());
    EXPECT_TRUE(hasNewRunner(work));
    EXPECT_EQ(progress->done, 2);
    EXPECT_EQ(stubbed.clonesInMenu, 2);
    EXPECT_EQ(model().statusMessage(), "1 wrapper was refreshed.");
    refresh({home_, work});
    EXPECT_EQ(model().statusMessage(), "All wrappers are up to date.");
    EXPECT_THAT(stubbed.tasks->priorities, ::testing::Each(TaskPriority::userInitiated));
}

TEST_F(CloneChangesTest, AFailureDoesNotKeepARefreshFromTheOthers) {
    const InstanceRecord gone = makeWebClone("Gone");
    const InstanceRecord work = makeWebClone("Work");
    ageRunner(work);
    fs::remove_all(gone.bundleURL);
    refresh({gone, work});
    EXPECT_TRUE(hasNewRunner(work));
    EXPECT_FALSE(model().statusMessage());
    EXPECT_THAT(model().lastError().value_or(""),
                StartsWith("1 wrapper was refreshed.\n\n1 wrapper couldn’t be refreshed:\n"));
    EXPECT_THAT(model().lastError().value_or(""), HasSubstr("Gone.app"));
}

TEST_F(CloneChangesTest, ACancelledRefreshLeavesTheRestAsItIs) {
    const InstanceRecord home_ = makeWebClone("Home");
    const InstanceRecord work = makeWebClone("Work");
    ageRunner(work);
    progress->isCancelled = true;
    refresh({home_, work});
    EXPECT_FALSE(hasNewRunner(work));
    EXPECT_EQ(progress->done, 0);
    EXPECT_EQ(model().statusMessage(), "No wrapper was refreshed. Cancelled before the last 2.");
}

TEST_F(CloneChangesTest, StopsWhatEndsWhenAsked) {
    RunningClone work("trap 'exit 0' TERM");
    const QFuture<void> stopping = changes.stop(work.clone());
    EXPECT_TRUE(changes.isStopping(work.clone()));
    resultOf(stopping);
    EXPECT_FALSE(changes.isStopping(work.clone()));
    EXPECT_FALSE(work.isRunning());
    EXPECT_FALSE(model().lastError());
    EXPECT_FALSE(model().statusMessage());
}

TEST_F(CloneChangesTest, WhatDoesNotEndIsReportedAndEndedOnlyByForce) {
    RunningClone work("trap '' TERM");
    std::vector<std::size_t> left;
    QObject::connect(&changes, &CloneChanges::stillRunning, &model(),
                     [&](const InstanceRecord& clone, std::size_t count) {
                         EXPECT_EQ(clone, work.clone());
                         left.push_back(count);
                     });
    resultOf(changes.stop(work.clone()));
    ASSERT_EQ(left.size(), 1U);
    EXPECT_GE(left.front(), 2U) << "the runner and its command";
    EXPECT_TRUE(work.isRunning());
    resultOf(changes.stop(work.clone(), CloneChanges::Force::afterAsking));
    EXPECT_EQ(left.size(), 1U);
    EXPECT_FALSE(work.isRunning());
    EXPECT_FALSE(model().lastError());
}

TEST_F(CloneChangesTest, ACancelledStopNoLongerWaitsAndAsksNothing) {
    RunningClone work("trap '' TERM");
    QObject::connect(&changes, &CloneChanges::stillRunning, &model(),
                     [](const auto&, std::size_t) { ADD_FAILURE() << "the user has decided"; });
    for (const auto force : {CloneChanges::Force::never, CloneChanges::Force::afterAsking}) {
        const QFuture<void> stopping = changes.stop(work.clone(), force);
        changes.cancelStop(work.clone());
        resultOf(stopping);
        EXPECT_FALSE(changes.isStopping(work.clone()));
        EXPECT_TRUE(work.isRunning());
        EXPECT_FALSE(model().lastError());
    }
    changes.cancelStop(work.clone()); // too late
}

TEST_F(CloneChangesTest, WhatEndsWhenAskedOnceMoreIsNotKilled) {
    const fs::path ready = home / "mayEnd";
    const fs::path ended = home / "ended";
    RunningClone work("trap '[ -e " + ready.string() + " ] && sleep 0.1 && > " + ended.string() +
                      " && exit' TERM");
    resultOf(changes.stop(work.clone()));
    ASSERT_TRUE(work.isRunning());
    write(ready, "");
    resultOf(changes.stop(work.clone(), CloneChanges::Force::afterAsking));
    EXPECT_FALSE(work.isRunning());
    EXPECT_TRUE(fs::exists(ended));
}

TEST_F(CloneChangesTest, WhatMayBeAnotherClonesIsLeftAloneAndReported) {
    const InstanceRecord work = makeWebClone("Work");
    const auto used = lockHome(work.config);
    resultOf(changes.stop(work));
    EXPECT_EQ(model().lastError(), "“Work” is not running, but a program that may be another "
                                   "clone’s uses its data folder.");
}

TEST_F(CloneChangesTest, StoppingWhatDoesNotRunOnlyLooksAgain) {
    const InstanceRecord work = makeWebClone("Work");
    stubbed.workspace->setRunning({work.config.bundleId});
    model().reload();
    ASSERT_TRUE(model().isRunning(work));
    stubbed.workspace->running.clear();
    resultOf(changes.stop(work));
    EXPECT_FALSE(model().isRunning(work));
    EXPECT_FALSE(model().lastError());
}

TEST_F(CloneChangesTest, WhatIsStoppedIsNoLongerWaitedForOnceNobodyWantsToKnow) {
    RunningClone work("trap '' TERM");
    StubbedModel patient(folder, 60s);
    const auto begin = std::chrono::steady_clock::now();
    {
        CloneChanges quitting(patient.model());
        quitting.stop(work.clone());
    }
    patient.dropModel();
    patient.tasks.reset(); // waits
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 30s);
    EXPECT_TRUE(work.isRunning());
}

} // namespace
} // namespace quorvel::testing
