#include "QuorvelApp/MessageSheet.h"
#include "tests/QuorvelApp/WindowFixture.h"

#include <QListView>
#include <QTest>

#include <gmock/gmock.h>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using namespace Qt::StringLiterals;
using ::testing::ElementsAre;

class CloneDetailTest : public WindowTest {};

TEST_F(CloneDetailTest, DeletesTheDataOnlyWhenAsked) {
    for (const bool withData : {false, true}) {
        const InstanceRecord work = addClone("Work");
        write(home / "QuorvelInstances/Work/data", "x");
        open();
        select(work);
        button(u"Delete"_s)->click();
        button(withData ? u"Delete Clone and Its Data"_s : u"Delete Clone Only"_s)->click();
        EXPECT_FALSE(fs::exists(work.bundleURL));
        EXPECT_EQ(fs::exists(home / "QuorvelInstances/Work/data"), !withData);
    }
}

TEST_F(CloneDetailTest, AsksOnceMoreBeforeItDeletesTheDataOfACloneThatRuns) {
    const InstanceRecord work = addClone("Work");
    write(home / "QuorvelInstances/Work/data", "x");
    open();
    select(work);
    // Started elsewhere, so that nothing but a look can tell.
    stubs.workspace->running = {work.config.bundleId};
    const auto delayed = [&](const QString& answer) {
        button(u"Delete"_s)->click();
        button(u"Delete Clone and Its Data"_s)->click();
        EXPECT_TRUE(shown(u"“Work” is running"_s));
        EXPECT_TRUE(fs::exists(home / "QuorvelInstances/Work/data"));
        button(answer)->click();
        EXPECT_FALSE(shown(u"“Work” is running"_s));
    };
    delayed(u"Cancel"_s);
    EXPECT_TRUE(fs::exists(work.bundleURL));
    EXPECT_TRUE(fs::exists(home / "QuorvelInstances/Work/data"));
    delayed(u"Delete Anyway"_s);
    EXPECT_FALSE(fs::exists(work.bundleURL));
    EXPECT_FALSE(fs::exists(home / "QuorvelInstances/Work"));
}

TEST_F(CloneDetailTest, EscapeAndReturnSpareTheDataOfACloneThatRuns) {
    const InstanceRecord work = addClone("Work");
    write(home / "QuorvelInstances/Work/data", "x");
    open();
    select(work);
    stubs.workspace->running = {work.config.bundleId};
    for (const Qt::Key key : {Qt::Key_Escape, Qt::Key_Return}) {
        button(u"Delete"_s)->click();
        button(u"Delete Clone and Its Data"_s)->click();
        QTest::keyClick(window->findChildren<MessageSheet*>().constLast(), key);
        EXPECT_FALSE(shown(u"“Work” is running"_s));
        EXPECT_TRUE(fs::exists(home / "QuorvelInstances/Work/data"));
    }
}

TEST_F(CloneDetailTest, DoesNotAskOnceMoreWhereTheDataStays) {
    const InstanceRecord work = addClone("Work");
    open();
    select(work);
    stubs.workspace->running = {work.config.bundleId};
    button(u"Delete"_s)->click();
    button(u"Delete Clone Only"_s)->click();
    EXPECT_FALSE(shown(u"“Work” is running"_s));
    EXPECT_FALSE(fs::exists(work.bundleURL));
}

TEST_F(CloneDetailTest, ADeletionCanBeCancelledByButtonAndByEscape) {
    const InstanceRecord work = addClone("Work");
    open();
    select(work);
    button(u"Delete"_s)->click();
    button(u"Cancel"_s)->click();
    button(u"Delete"_s)->click();
    QTest::keyClick(window->findChildren<MessageSheet*>().constLast(), Qt::Key_Escape);
    EXPECT_FALSE(shown(u"Delete “Work”?"_s));
    EXPECT_TRUE(fs::exists(work.bundleURL));
}

TEST_F(CloneDetailTest, TheLaunchButtonFocusesWhatRuns) {
    const InstanceRecord work = addClone("Work");
    open();
    select(work);
    button(u"Launch"_s)->click();
    EXPECT_THAT(stubs.workspace->opened, ElementsAre(work.bundleURL));
    stubs.workspace->running = {work.config.bundleId};
    stubs.model().refreshRunningState();
    EXPECT_TRUE(shown(u"Running"_s));
    button(u"Focus"_s)->click();
    EXPECT_EQ(stubs.workspace->opened.size(), 2U);
    const auto* list = window->findChild<QListView*>();
    EXPECT_TRUE(list->model()->index(0, 0).data(CloneListModel::RunningRole).toBool());
    stubs.workspace->running.clear();
    stubs.model().refreshRunningState();
    EXPECT_FALSE(list->model()->index(0, 0).data(CloneListModel::RunningRole).toBool());
}

TEST_F(CloneDetailTest, RevealsTheWrapper) {
    const InstanceRecord work = addClone("Work");
    open();
    select(work);
    button(u"Reveal in Finder"_s)->click();
    EXPECT_TRUE(eventually([&] { return !stubs.workspace->revealed.empty(); }));
    EXPECT_THAT(stubs.workspace->revealed, ElementsAre(work.bundleURL));
}

TEST_F(CloneDetailTest, OffersToMoveFilesUntilTheyAreMoved) {
    const InstanceRecord work = addClone("Work");
    write(home / "QuorvelInstances/Work/Downloads/a", "x");
    fs::create_directories(home / "Downloads");
    open();
    select(work);
    EXPECT_TRUE(shown(u"This clone keeps its own Downloads, Documents & Desktop"_s));
    button(u"Move files to shared folders"_s)->click();
    EXPECT_TRUE(shown(u"Move “Work” files to your shared folders?"_s));
    button(u"Move Files & Share"_s)->click();
    ASSERT_TRUE(eventually([&] { return shown(u"Done"_s); }));
    EXPECT_TRUE(shown(u"Moved 1 from Downloads into your shared folders. “Work” now saves "
                      u"there."_s));
    EXPECT_FALSE(shown(u"This clone keeps its own Downloads, Documents & Desktop"_s));
    button(u"OK"_s)->click();
    EXPECT_FALSE(stubs.model().statusMessage());
}

} // namespace
} // namespace quorvel::testing
