#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/InstanceRecord.h"
#include "QuorvelApp/widgets/MessageSheet.h"
#include "tests/QuorvelApp/WindowFixture.h"

#include <QListView>
#include <QMenuBar>
#include <QTest>

#include <QToolTip>
#include <gtest/gtest.h>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using namespace Qt::StringLiterals;

class MainWindowTest : public WindowTest {};

TEST_F(MainWindowTest, WithoutClonesInvitesToMakeTheFirst) {
    open();
    EXPECT_TRUE(shown(u"No clones yet"_s));
    EXPECT_TRUE(shown(u"Create an isolated copy of any app to\nrun two accounts side by side."_s));
    EXPECT_TRUE(shown(u"Create your first clone to get started."_s));
    EXPECT_EQ(button(u"New Clone"_s)->property("look"), u"prominent"_s);
    button(u"New Clone"_s)->click();
    EXPECT_TRUE(window->content().showingNewClone());
}

TEST_F(MainWindowTest, ListsTheClonesWhenItAppears) {
    addClone("Work");
    addClone("Home");
    open();
    EXPECT_FALSE(shown(u"No clones yet"_s));
    EXPECT_TRUE(shown(u"Clones"_s));
    EXPECT_TRUE(shown(u"Select a clone to manage it."_s));
    const auto* list = window->findChild<QListView*>();
    ASSERT_EQ(list->model()->rowCount(), 2);
    EXPECT_EQ(list->model()->index(0, 0).data(), u"Home"_s);
    EXPECT_EQ(list->model()->index(1, 0).data(CloneListModel::SummaryRole), u"Notes"_s);
}

TEST_F(MainWindowTest, IsAtLeastAsLargeAsItMustBeAndNamedForTheApplication) {
    open();
    EXPECT_EQ(window->windowTitle(), u"Quorvel"_s);
    EXPECT_EQ(window->content().minimumSize(), QSize(760, 480));
    EXPECT_EQ(window->size(), MainWindow::initial);
    EXPECT_EQ(window->content().sidebar().minimumWidth(), 240);
}

TEST_F(MainWindowTest, ShowsTheSelectedCloneAndFallsBackWhenItIsDeleted) {
    const InstanceRecord work = addClone("Work");
    addClone("Home");
    open();
    select(work);
    EXPECT_TRUE(shown(u"Work"_s));
    EXPECT_TRUE(shown(u"Not running"_s));
    EXPECT_TRUE(shown(u"Details"_s));
    button(u"Delete"_s)->click();
    EXPECT_TRUE(shown(u"Delete “Work”?"_s));
    EXPECT_TRUE(shown(u"“Delete Clone Only” removes the app but keeps its data at "
                      u"~/QuorvelInstances/Work. “…and Its Data” also erases that folder — "
                      u"accounts and settings for this clone are gone for good."_s));
    button(u"Delete Clone Only"_s)->click();
    EXPECT_TRUE(eventually([&] { return cloneCount() == 1; }));
    EXPECT_TRUE(shown(u"Select a clone to manage it."_s));
    EXPECT_EQ(window->content().sidebar().selection(), work.id()) << "the selection stays";
    EXPECT_FALSE(fs::exists(work.bundleURL));
}

TEST_F(MainWindowTest, AnErrorShowsUntilItIsDismissed) {
    open();
    stubs.model().setLastError("<b>first</b>");
    EXPECT_TRUE(shown(u"Something went wrong"_s));
    EXPECT_TRUE(shown(u"<b>first</b>"_s)) << "as plain text";
    stubs.model().setLastError("second");
    EXPECT_TRUE(shown(u"second"_s));
    EXPECT_FALSE(shown(u"<b>first</b>"_s));
    QTest::keyClick(window->findChildren<MessageSheet*>().constLast(), Qt::Key_Escape);
    EXPECT_FALSE(stubs.model().lastError());
    EXPECT_FALSE(shown(u"Something went wrong"_s));
}

TEST_F(MainWindowTest, AnErrorShowsAboveTheSheet) {
    addApps();
    open();
    NewCloneView& sheet = openSheet();
    stubs.model().setLastError("no");
    EXPECT_TRUE(shown(u"Something went wrong"_s));
    button(u"OK"_s)->click();
    EXPECT_TRUE(sheet.isVisible());
}

TEST_F(MainWindowTest, HasTheMenusOfEveryProgramAndItsOwnCommands) {
    open();
    QStringList titles;
    for (const QAction* menu : window->menuBar()->actions()) {
        titles.push_back(QString(menu->text()).remove(u'&'));
        for (const QAction* action : menu->menu()->actions()) {
            if (action->isVisible() && !action->isSeparator()) {
                titles.push_back(QString(action->text()).remove(u'&') + u' ' +
                                 action->shortcut().toString());
            }
        }
    }
    const QString redo = QKeySequence(QKeySequence::Redo).toString(); // differs between desktops
    EXPECT_EQ(titles.join(u'|').toStdString(),
              "File|New Clone… Ctrl+N|Close Ctrl+W|Quit Ctrl+Q|Edit|Undo Ctrl+Z|Redo " +
                  redo.toStdString() +
                  "|Cut Ctrl+X|Copy Ctrl+C|Paste Ctrl+V|Select All Ctrl+A|View|Refresh Ctrl+R|"
                  "Clone|Open |Edit… Ctrl+E|Rename… F2|Duplicate… Ctrl+D|Refresh Wrapper |Show "
                  "Log |Reveal in Finder |Stop |Delete… Del|Refresh Wrappers |"
                  "Help|Check for Updates… |About Quorvel ");
}

TEST_F(MainWindowTest, HasNoTitleBelowThatOfTheWindowManager) {
    addClone("Work");
    open();
    EXPECT_FALSE(shown(u"Quorvel"_s));
}

TEST_F(MainWindowTest, TheRefreshCommandFindsAWrapperCopiedInByHand) {
    open();
    addClone("Work");
    command(u"Refresh"_s)->trigger();
    EXPECT_FALSE(shown(u"No clones yet"_s));
}

TEST_F(MainWindowTest, TheNewCloneCommandOpensTheSheetOnce) {
    open();
    command(u"New Clone…"_s)->trigger();
    EXPECT_TRUE(window->content().showingNewClone());
    EXPECT_FALSE(stubs.model().startNewCloneRequested()) << "the request is taken";
    command(u"New Clone…"_s)->trigger();
    EXPECT_EQ(window->findChildren<NewCloneView*>().size(), 1);
}

TEST_F(MainWindowTest, ACloneThatChangesWhileShownIsShownAgain) {
    InstanceRecord work = addClone("Work");
    open();
    select(work);
    work.config.displayName = "Renamed";
    makeWrapper(work.bundleURL, work.config);
    stubs.model().reload();
    EXPECT_TRUE(shown(u"Renamed"_s));
}

TEST_F(MainWindowTest, TheListOfClonesHasItsIdealWidth) {
    addClone("Work");
    open();
    EXPECT_EQ(window->content().sidebar().width(), 280);
}

TEST_F(MainWindowTest, ATooltipSaysThatACloneRunsAndWhatItsRowHadToElide) {
    const InstanceRecord work = addClone("Work");
    addClone("Zoo & " + std::string(100, 'x'));
    stubs.workspace->setRunning({work.config.bundleId});
    open();
    auto* list = window->content().sidebar().findChild<QListView*>();
    const auto tip = [&](int row, bool atDot) {
        const QRect rect = list->visualRect(list->model()->index(row, 0));
        return tooltipAt(list,
                         atDot ? QPoint(rect.right() - 22, rect.center().y()) : rect.center());
    };
    EXPECT_EQ(tip(0, true), u"Running"_s);
    EXPECT_EQ(tip(1, false), u"Zoo & "_s + QString(100, u'x') + u"\nNotes"_s);
    QToolTip::hideText();
}

TEST_F(MainWindowTest, TheToolbarsButtonMakesACloneAndSaysSo) {
    addClone("Work");
    open();
    QPushButton* add = nullptr;
    for (QPushButton* found : window->findChildren<QPushButton*>()) {
        add = found->isVisible() && found->accessibleName() == u"New Clone"_s ? found : add;
    }
    ASSERT_NE(add, nullptr);
    EXPECT_EQ(add->toolTip(), u"Create an isolated copy of an app"_s);
    EXPECT_EQ(add->icon().pixmap(16, 16).toImage(), symbolIcon(u"plus"_s).pixmap(16, 16).toImage());
    add->click();
    EXPECT_TRUE(window->content().showingNewClone());
}

TEST_F(MainWindowTest, ALongMessageLeavesItsButtonInTheWindow) {
    open().resize(MainWindow::smallest);
    stubs.model().setLastError(std::string(20000, 'x'));
    QCoreApplication::processEvents();
    const QPushButton* ok = button(u"OK"_s);
    const QRect place(ok->mapTo(window.get(), QPoint()), ok->size());
    EXPECT_TRUE(window->rect().contains(place));
    EXPECT_GE(ok->height(), ok->minimumSizeHint().height());
}

} // namespace
} // namespace quorvel::testing
