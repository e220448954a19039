#include "QuorvelApp/library/CloneSheets.h"

#include "LaunchKit/Changes/ClonesLock.h"
#include "QuorvelApp/widgets/MessageSheet.h"
#include "QuorvelApp/widgets/ProgressSheet.h"
#include "tests/QuorvelApp/RealClones.h"
#include "tests/QuorvelApp/WindowFixture.h"

#include <QProgressBar>
#include <QTest>

namespace quorvel::testing {
namespace {

using namespace Qt::StringLiterals;

class CloneSheetsTest : public WindowTest {
protected:
    // Opens the window on a clone that was told to stop and does not.
    void openStubborn(const RunningClone& work) {
        stubs.workspace->setRunning({work.clone().config.bundleId});
        open();
        select(work.clone());
        command(u"Stop"_s)->trigger();
        EXPECT_FALSE(command(u"Stop"_s)->isEnabled()) << "once is enough";
        EXPECT_TRUE(shown(u"Stopping…"_s));
        ASSERT_TRUE(eventually([&] { return shown(u"End “Work” by force?"_s); }));
        EXPECT_FALSE(shown(u"Stopping…"_s));
    }
    // The window shows both.
    std::pair<InstanceRecord, InstanceRecord> openOldClones() {
        std::pair<InstanceRecord, InstanceRecord> clones{makeWebClone("Home"),
                                                         makeWebClone("Work")};
        ageRunner(clones.first);
        ageRunner(clones.second);
        open();
        return clones;
    }
    QString text() { return window->findChildren<MessageSheet*>().constLast()->text(); }
    ProgressSheet* progress() { return window->findChild<ProgressSheet*>(); }
};

TEST_F(CloneSheetsTest, StopsWhatEndsWithoutAQuestion) {
    RunningClone work("trap 'exit 0' TERM");
    stubs.workspace->setRunning({work.clone().config.bundleId});
    open();
    select(work.clone());
    command(u"Stop"_s)->trigger();
    stubs.workspace->running.clear();
    EXPECT_TRUE(eventually([&] { return !work.isRunning() && shown(u"Not running"_s); }));
    EXPECT_TRUE(window->findChildren<MessageSheet*>().isEmpty());
}

TEST_F(CloneSheetsTest, AStopThatIsCancelledEndsInNoQuestion) {
    RunningClone work("trap '' TERM");
    stubs.workspace->setRunning({work.clone().config.bundleId});
    open();
    select(work.clone());
    EXPECT_FALSE(command(u"Cancel Stopping"_s)->isVisible());
    command(u"Stop"_s)->trigger();
    ASSERT_TRUE(command(u"Cancel Stopping"_s)->isVisible());
    command(u"Cancel Stopping"_s)->trigger();
    EXPECT_TRUE(eventually([&] { return shown(u"Running"_s); }));
    EXPECT_FALSE(command(u"Cancel Stopping"_s)->isVisible());
    EXPECT_TRUE(command(u"Stop"_s)->isEnabled());
    EXPECT_TRUE(window->findChildren<MessageSheet*>().isEmpty());
    EXPECT_TRUE(work.isRunning());
}

TEST_F(CloneSheetsTest, ForceIsAQuestionWhoseDefaultIsCancel) {
    RunningClone work("trap '' TERM");
    openStubborn(work);
    EXPECT_TRUE(text().startsWith(u"“Work” was asked to end, but "_s));
    EXPECT_TRUE(text().endsWith(u" are still running. Unsaved work is lost."_s));
    EXPECT_EQ(window->focusWidget(), button(u"Cancel"_s));
    QTest::keyClick(window->focusWidget(), Qt::Key_Return);
    EXPECT_FALSE(shown(u"End “Work” by force?"_s));
    EXPECT_TRUE(work.isRunning());
    EXPECT_TRUE(command(u"Stop"_s)->isEnabled());
}

TEST_F(CloneSheetsTest, ForceEndsWhatIsStillRunning) {
    RunningClone work("trap '' TERM");
    openStubborn(work);
    button(u"End by Force"_s)->click();
    EXPECT_TRUE(eventually([&] { return !work.isRunning(); }));
    EXPECT_FALSE(stubs.model().lastError());
}

TEST_F(CloneSheetsTest, RefreshesTheSelectedCloneOrAll) {
    const auto [home_, work] = openOldClones();
    select(work);
    command(u"Refresh Wrapper"_s)->trigger();
    ASSERT_TRUE(eventually([&] { return shown(u"1 wrapper was refreshed."_s); }));
    EXPECT_TRUE(hasNewRunner(work));
    EXPECT_FALSE(hasNewRunner(home_));
    button(u"OK"_s)->click();
    ageRunner(work);
    command(u"Refresh Wrappers"_s)->trigger();
    EXPECT_FALSE(command(u"Refresh Wrappers"_s)->isEnabled());
    EXPECT_FALSE(command(u"Edit…"_s)->isEnabled());
    EXPECT_FALSE(button(u"Launch"_s)->isEnabled()) << "as the command";
    ASSERT_TRUE(eventually([&] { return shown(u"2 wrappers were refreshed."_s); }));
    button(u"OK"_s)->click();
    EXPECT_TRUE(command(u"Refresh Wrappers"_s)->isEnabled());
    EXPECT_TRUE(button(u"Launch"_s)->isEnabled());
}

TEST_F(CloneSheetsTest, ARefreshThatTakesTimeShowsItsProgressAndCanBeCancelled) {
    const auto [home_, work] = openOldClones();
    auto lock = lockClones(folder);
    command(u"Refresh Wrappers"_s)->trigger();
    ASSERT_TRUE(eventually([&] { return progress() != nullptr; }));
    EXPECT_TRUE(shown(u"Refreshing wrappers…"_s));
    EXPECT_TRUE(shown(u"0 of 2"_s));
    EXPECT_EQ(progress()->findChild<QProgressBar*>()->maximum(), 2);
    EXPECT_EQ(progress()->findChild<QProgressBar*>()->accessibleName(), u"Refreshing wrappers…"_s);
    QTest::keyClick(window->focusWidget(), Qt::Key_Escape);
    EXPECT_FALSE(button(u"Cancelling…"_s)->isEnabled());
    EXPECT_NE(progress(), nullptr) << "the first one is still waiting";
    lock.reset();
    EXPECT_TRUE(eventually(
        [&] { return shown(u"1 wrapper was refreshed. Cancelled before the last one."_s); }));
    EXPECT_TRUE(eventually([&] { return progress() == nullptr; }));
    EXPECT_TRUE(hasNewRunner(home_));
    EXPECT_FALSE(hasNewRunner(work));
}

TEST_F(CloneSheetsTest, AWindowThatClosesEndsTheRefreshAfterTheCloneAtHand) {
    const auto [home_, work] = openOldClones();
    auto lock = lockClones(folder);
    command(u"Refresh Wrappers"_s)->trigger();
    window.reset();
    stubs.dropModel();
    lock.reset();
    stubs.tasks.reset(); // waits
    EXPECT_FALSE(hasNewRunner(work));
}

TEST_F(CloneSheetsTest, TheProgressIsTheOneOfTheLatestRefresh) {
    const InstanceRecord home_ = makeWebClone("Home");
    const InstanceRecord work = makeWebClone("Work");
    open();
    select(work);
    command(u"Refresh Wrapper"_s)->trigger();
    ASSERT_TRUE(eventually([&] { return shown(u"The wrapper is up to date."_s); }));
    button(u"OK"_s)->click();
    auto lock = lockClones(folder);
    command(u"Refresh Wrappers"_s)->trigger();
    ASSERT_TRUE(eventually([&] { return progress() != nullptr; }));
    EXPECT_TRUE(shown(u"Refreshing wrappers…"_s));
    lock.reset();
    EXPECT_TRUE(eventually([&] { return shown(u"All wrappers are up to date."_s); }));
}

TEST_F(CloneSheetsTest, TheRefreshOfOneCloneHasNoParts) {
    const InstanceRecord work = makeWebClone("Work");
    open();
    select(work);
    auto lock = lockClones(folder);
    command(u"Refresh Wrapper"_s)->trigger();
    ASSERT_TRUE(eventually([&] { return progress() != nullptr; }));
    EXPECT_TRUE(shown(u"Refreshing the wrapper…"_s));
    EXPECT_EQ(progress()->findChild<QProgressBar*>()->maximum(), 0);
    lock.reset();
    EXPECT_TRUE(eventually([&] { return shown(u"The wrapper is up to date."_s); }));
}

} // namespace
} // namespace quorvel::testing
