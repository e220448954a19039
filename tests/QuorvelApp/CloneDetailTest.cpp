#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/InstanceRecord.h"
#include "QuorvelApp/CloneDetailView.h"
#include "QuorvelApp/widgets/MessageSheet.h"
#include "tests/QuorvelApp/WindowFixture.h"
#include "tests/support/DesktopApps.h"

#include <QListView>
#include <QTest>

#include <gmock/gmock.h>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using namespace Qt::StringLiterals;
using ::testing::ElementsAre;

class CloneDetailTest : public WindowTest {};

TEST_F(CloneDetailTest, SaysWhereAClonesWindowsCantBeToldFromTheOriginals) {
    const DesktopApps apps;
    const auto sentence =
        u"The dock may show the clone’s windows together with those of the original."_s;
    InstanceConfig config;
    config.displayName = "Scripted";
    config.bundleId = "app.quorvel.instance.scripted";
    apps.addScript("scripted", "exit\n"); // which passes no name on
    config.targetAppPath = apps.addEntry("scripted", "scripted").string();
    const InstanceRecord scripted = addClone("Scripted", config);
    const InstanceRecord work = addClone("Work");
    open();
    select(scripted);
    EXPECT_TRUE(QTest::qWaitFor([&] { return shown(sentence); }));
    select(work);
    QCoreApplication::processEvents();
    EXPECT_FALSE(shown(sentence));
}

TEST_F(CloneDetailTest, DeletesTheDataOnlyWhenAsked) {
    for (const bool withData : {false, true}) {
        const InstanceRecord work = addClone("Work");
        write(home / "QuorvelInstances/Work/data", "x");
        open();
        select(work);
        button(u"Delete"_s)->click();
        button(withData ? u"Delete Clone and Its Data"_s : u"Delete Clone Only"_s)->click();
        EXPECT_TRUE(eventually([&] { return cloneCount() == 0; }));
        EXPECT_FALSE(fs::exists(work.bundleURL));
        EXPECT_EQ(fs::exists(home / "QuorvelInstances/Work/data"), !withData);
    }
}

TEST_F(CloneDetailTest, AsksOnceMoreBeforeItDeletesTheDataOfACloneThatRuns) {
    const InstanceRecord work = addClone("Work");
    write(home / "QuorvelInstances/Work/data", "x");
    open();
    select(work);
    // Started elsewhere, so only a refresh can notice.
    stubs.workspace->setRunning({work.config.bundleId});
    const auto delayed = [&](const QString& answer) {
        button(u"Delete"_s)->click();
        button(u"Delete Clone and Its Data"_s)->click();
        EXPECT_TRUE(shown(u"“Work” is running"_s));
        EXPECT_EQ(window->findChildren<MessageSheet*>().constLast()->text(),
                  u"Quit it before you delete its data. It would lose what it has open, and might "
                  u"write to its data again."_s);
        EXPECT_TRUE(fs::exists(home / "QuorvelInstances/Work/data"));
        button(answer)->click();
        EXPECT_FALSE(shown(u"“Work” is running"_s));
    };
    delayed(u"Cancel"_s);
    EXPECT_TRUE(fs::exists(work.bundleURL));
    EXPECT_TRUE(fs::exists(home / "QuorvelInstances/Work/data"));
    delayed(u"Delete Anyway"_s);
    EXPECT_TRUE(eventually([&] { return cloneCount() == 0; }));
    EXPECT_FALSE(fs::exists(work.bundleURL));
    EXPECT_FALSE(fs::exists(home / "QuorvelInstances/Work"));
}

TEST_F(CloneDetailTest, EscapeAndReturnSpareTheDataOfACloneThatRuns) {
    const InstanceRecord work = addClone("Work");
    write(home / "QuorvelInstances/Work/data", "x");
    open();
    select(work);
    stubs.workspace->setRunning({work.config.bundleId});
    for (const Qt::Key key : {Qt::Key_Escape, Qt::Key_Return}) {
        button(u"Delete"_s)->click();
        button(u"Delete Clone and Its Data"_s)->click();
        QTest::keyClick(window->findChildren<MessageSheet*>().constLast(), key);
        EXPECT_FALSE(shown(u"“Work” is running"_s));
        EXPECT_TRUE(fs::exists(home / "QuorvelInstances/Work/data"));
    }
}

TEST_F(CloneDetailTest, DoesNotAskOnceMoreWhereTheDataStaysButSaysWhatGoesOn) {
    for (const bool runs : {true, false}) {
        const InstanceRecord work = addClone("Work");
        open();
        select(work);
        stubs.workspace->running.clear();
        if (runs) {
            stubs.workspace->setRunning({work.config.bundleId});
        }
        button(u"Delete"_s)->click();
        button(u"Delete Clone Only"_s)->click();
        EXPECT_FALSE(shown(u"“Work” is running"_s));
        EXPECT_TRUE(eventually([&] { return cloneCount() == 0; }));
        EXPECT_FALSE(fs::exists(work.bundleURL));
        EXPECT_EQ(stubs.model().statusMessage().value_or("nothing"),
                  runs ? "“Work” is running. It goes on until you quit it, perhaps under the "
                         "original’s icon in the Dock."
                       : "nothing");
        stubs.model().setStatusMessage(std::nullopt);
    }
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
    stubs.workspace->setRunning({work.config.bundleId});
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
    EXPECT_TRUE(shown(u"Files it saves are tucked inside its data folder. Move them into your "
                      u"Mac's shared folders and share them from now on — accounts and settings "
                      u"stay isolated."_s));
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

TEST_F(CloneDetailTest, AMigrationIsExplainedAndCanBeCancelled) {
    const InstanceRecord work = addClone("Work");
    write(home / "QuorvelInstances/Work/Downloads/a", "x");
    fs::create_directories(home / "Downloads");
    open();
    select(work);
    for (const bool byKey : {false, true}) {
        button(u"Move files to shared folders"_s)->click();
        EXPECT_TRUE(
            shown(u"Files in this clone's Downloads, Documents and Desktop move into your Mac's "
                  u"real folders — nothing is overwritten (a name clash gets a number). Future "
                  u"saves go there too, while the clone's accounts and settings stay isolated. "
                  u"Quit the clone first if it's running."_s));
        if (byKey) {
            QTest::keyClick(window->findChildren<MessageSheet*>().constLast(), Qt::Key_Escape);
        } else {
            button(u"Cancel"_s)->click();
        }
        EXPECT_FALSE(shown(u"Move “Work” files to your shared folders?"_s));
    }
    EXPECT_FALSE(eventually([&] { return stubs.model().statusMessage().has_value(); },
                            std::chrono::milliseconds(100)));
    EXPECT_EQ(read(home / "QuorvelInstances/Work/Downloads/a"), "x");
    EXPECT_TRUE(shown(u"This clone keeps its own Downloads, Documents & Desktop"_s));
}

TEST_F(CloneDetailTest, TheOfferDisappearsOnceALaunchHasLinkedTheFolders) {
    const InstanceRecord work = addClone("Work");
    const QString offer = u"This clone keeps its own Downloads, Documents & Desktop"_s;
    fs::create_directories(home / "Downloads");
    fs::create_directories(home / "QuorvelInstances/Work/Downloads");
    open();
    select(work);
    EXPECT_TRUE(shown(offer));
    button(u"Launch"_s)->click();
    EXPECT_FALSE(shown(offer));

    fs::remove(home / "QuorvelInstances/Work/Downloads");
    fs::create_directories(home / "QuorvelInstances/Work/Downloads");
    stubs.model().reload();
    EXPECT_TRUE(shown(offer));
    stubs.model().launch(work);
    ASSERT_TRUE(eventually([&] { return !stubs.delayed.empty(); }));
    stubs.delayed.back()();
    EXPECT_FALSE(shown(offer)) << "launched from elsewhere";
}

TEST_F(CloneDetailTest, TheHeaderIsAsHighAsItsIconInEveryWindow) {
    InstanceConfig plain = minimalConfig("Build");
    plain.kind = ShortcutKind::command;
    plain.commandPath = "/bin/true";
    const InstanceRecord build = addClone("Build", plain);
    open();
    select(build);
    for (const int height : {480, 690, 1400}) {
        window->resize(980, height);
        QCoreApplication::processEvents();
        const auto* detail = window->findChild<CloneDetailView*>();
        const auto top = [&](const QWidget* widget) { return widget->mapTo(detail, QPoint()).y(); };
        const auto* icon = detail->findChild<AppIcon*>();
        EXPECT_EQ(icon->size(), QSize(64, 64));
        EXPECT_EQ(icon->parentWidget()->height(), 64) << height;
        EXPECT_EQ(top(icon), 26) << height;
        EXPECT_EQ(top(button(u"Launch"_s)), 26 + 64 + 18) << height;
    }
}

} // namespace
} // namespace quorvel::testing
