#include "QuorvelApp/library/CloneCommands.h"

#include "LaunchKit/Homes/HomeLock.h"
#include "LaunchKit/InstanceConfig.h"
#include "QuorvelApp/library/CloneList.h"
#include "QuorvelApp/panels/DuplicateView.h"
#include "QuorvelApp/panels/EditCloneView.h"
#include "QuorvelApp/theme/Shortcuts.h"
#include "QuorvelApp/widgets/MessageSheet.h"
#include "tests/QuorvelApp/WindowFixture.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QTest>

#include <gmock/gmock.h>

namespace quorvel::testing {
namespace {

using namespace Qt::StringLiterals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class CloneCommandsTest : public WindowTest {
protected:
    CloneList* list() { return window->findChild<CloneList*>(); }
    QMenu* contextMenu() { return window->content().sidebar().findChild<QMenu*>(); }

    QPoint middleOf(const QString& name) {
        const QModelIndexList found = list()->model()->match(
            list()->model()->index(0, 0), Qt::DisplayRole, name, 1, Qt::MatchExactly);
        return list()->visualRect(found.at(0)).center();
    }

    // The words of the commands on one clone that can be chosen.
    QStringList enabled() {
        QStringList words;
        for (const QAction* action : contextMenu()->actions()) {
            if (action->isEnabled() && !action->isSeparator()) {
                words.push_back(QString(action->text()).remove(u'&'));
            }
        }
        return words;
    }

    // Notes which clones editing and duplicating is asked for.
    void listen() {
        const auto note = [this](const char* what) {
            return [this, what](const InstanceRecord& clone) {
                asked.push_back(what + (" " + clone.config.displayName));
            };
        };
        CloneCommands& commands = window->content().commands();
        QObject::connect(&commands, &CloneCommands::editRequested, window.get(), note("edit"));
        QObject::connect(&commands, &CloneCommands::duplicateRequested, window.get(),
                         note("duplicate"));
    }

    // Closes that panel once it is there.
    template<typename Panel>
    void closePanel() {
        const auto panel = [this] { return window->findChild<Panel*>(); };
        ASSERT_TRUE(eventually([&] { return panel() != nullptr; }));
        QTest::keyClick(panel(), Qt::Key_Escape);
        ASSERT_TRUE(eventually([&] { return panel() == nullptr; }));
    }

    void openMenuBy(QContextMenuEvent::Reason reason, QPoint place) {
        QContextMenuEvent event(reason, place, list()->viewport()->mapToGlobal(place));
        QApplication::sendEvent(reason == QContextMenuEvent::Mouse ? list()->viewport() : list(),
                                &event);
    }

    const QString all = u"Open|Edit…|Rename…|Duplicate…|Refresh Wrapper|Show Log|Reveal in Finder|"
                        u"Delete…"_s;
    std::vector<std::string> asked{};
};

TEST_F(CloneCommandsTest, NeedAClone) {
    open();
    EXPECT_THAT(enabled(), IsEmpty());
    EXPECT_FALSE(command(u"Refresh Wrappers"_s)->isEnabled());
    const InstanceRecord& work = addClone("Work");
    stubs.model().reload();
    EXPECT_THAT(enabled(), IsEmpty()) << "none is selected";
    EXPECT_TRUE(command(u"Refresh Wrappers"_s)->isEnabled());
    select(work);
    EXPECT_EQ(enabled().join(u'|'), all);
    std::filesystem::remove_all(work.bundleURL);
    stubs.model().reload();
    EXPECT_THAT(enabled(), IsEmpty()) << "the selected one is gone";
}

TEST_F(CloneCommandsTest, AreOffWhileASheetShows) {
    const InstanceRecord& work = addClone("Work");
    open();
    select(work);
    listen();
    stubs.model().setLastError("no");
    EXPECT_THAT(enabled(), IsEmpty());
    EXPECT_FALSE(command(u"Refresh Wrappers"_s)->isEnabled());
    QTest::keyClick(window->focusWidget(), Qt::Key_E, Qt::ControlModifier);
    EXPECT_THAT(asked, IsEmpty());
    stubs.model().setStatusMessage("and another");
    button(u"OK"_s)->click();
    EXPECT_THAT(enabled(), IsEmpty()) << "one is left";
    button(u"OK"_s)->click();
    EXPECT_EQ(enabled().join(u'|'), all);
}

TEST_F(CloneCommandsTest, StopOnlyWhatRuns) {
    const InstanceRecord work = addClone("Work");
    open();
    select(work);
    EXPECT_FALSE(command(u"Stop"_s)->isEnabled());
    stubs.workspace->setRunning({work.config.bundleId});
    Q_EMIT contextMenu()->aboutToShow(); // started elsewhere
    EXPECT_TRUE(command(u"Stop"_s)->isEnabled());
    stubs.workspace->running.clear();
    stubs.model().refreshRunningState();
    EXPECT_FALSE(command(u"Stop"_s)->isEnabled());
    const auto leftBehind = lockHome(work.config);
    stubs.model().refreshRunningState();
    EXPECT_TRUE(command(u"Stop"_s)->isEnabled());
}

TEST_F(CloneCommandsTest, ShowNoLogOfAFile) {
    InstanceConfig config = minimalConfig("Taxes");
    config.kind = ShortcutKind::file;
    config.openPath = "/";
    const InstanceRecord& taxes = addClone("Taxes", config);
    open();
    select(taxes);
    EXPECT_FALSE(command(u"Show Log"_s)->isEnabled());
    EXPECT_TRUE(command(u"Open"_s)->isEnabled());
}

TEST_F(CloneCommandsTest, HaveTheirKeysInTheWholeWindowButNotInFields) {
    const InstanceRecord& work = addClone("Work");
    addApps();
    open();
    select(work);
    listen();
    for (QWidget* place :
         {static_cast<QWidget*>(list()), static_cast<QWidget*>(button(u"Launch"_s))}) {
        asked.clear();
        place->setFocus();
        QTest::keyClick(place, Qt::Key_E, Qt::ControlModifier);
        closePanel<EditCloneView>();
        QTest::keyClick(place, Qt::Key_D, Qt::ControlModifier);
        closePanel<DuplicateView>();
        EXPECT_THAT(asked, ElementsAre("edit Work", "duplicate Work"));
    }
    asked.clear();
    openSheet();
    choose(u"Notes"_s);
    QLineEdit* name = field(u"Name"_s);
    name->setFocus();
    name->setText(u"abc"_s);
    name->setCursorPosition(0);
    QTest::keyClick(name, Qt::Key_Delete);
    EXPECT_EQ(name->text(), u"bc"_s);
    QTest::keyClick(name, Qt::Key_F2);
    QTest::keyClick(name, Qt::Key_E, Qt::ControlModifier);
    QTest::keyClick(name, Qt::Key_D, Qt::ControlModifier);
    EXPECT_THAT(asked, IsEmpty());
    EXPECT_FALSE(list()->isEditing());
    EXPECT_TRUE(window->findChildren<MessageSheet*>().isEmpty());
}

TEST_F(CloneCommandsTest, DeleteAsksInTheListAndNowhereElse) {
    const InstanceRecord& work = addClone("Work");
    open();
    select(work);
    button(u"Launch"_s)->setFocus();
    QTest::keyClick(button(u"Launch"_s), Qt::Key_Delete);
    EXPECT_FALSE(shown(u"Delete “Work”?"_s));
    list()->setFocus();
    QTest::keyClick(list(), Qt::Key_Delete);
    EXPECT_TRUE(shown(u"Delete “Work”?"_s));
    button(u"Cancel"_s)->click();
    EXPECT_TRUE(list()->hasFocus());
}

TEST_F(CloneCommandsTest, DeleteHasTheKeysOfItsSystem) {
    open();
    EXPECT_EQ(command(u"Delete…"_s)->shortcuts(), deletionKeys());
    EXPECT_THAT(deletionKeys(QOperatingSystemVersion::Unknown),
                ElementsAre(QKeySequence(Qt::Key_Delete)));
    EXPECT_THAT(deletionKeys(QOperatingSystemVersion::MacOS),
                ElementsAre(QKeySequence(Qt::Key_Delete), QKeySequence(Qt::Key_Backspace)));
}

TEST_F(CloneCommandsTest, ADoubleClickAndReturnOpenTheClone) {
    const InstanceRecord work = addClone("Work");
    open();
    select(work);
    QTest::mouseDClick(list()->viewport(), Qt::LeftButton, {}, middleOf(u"Work"_s));
    EXPECT_THAT(stubs.workspace->opened, ElementsAre(work.bundleURL));
    list()->setFocus();
    QTest::keyClick(list(), Qt::Key_Return);
    QTest::keyClick(list(), Qt::Key_Enter);
    command(u"Open"_s)->trigger();
    EXPECT_EQ(stubs.workspace->opened.size(), 4U);
    QTest::mouseDClick(list()->viewport(), Qt::RightButton, {}, middleOf(u"Work"_s));
    QTest::mouseDClick(list()->viewport(), Qt::LeftButton, {},
                       list()->viewport()->rect().bottomRight() - QPoint(5, 5));
    stubs.model().setLastError("no");
    Q_EMIT list()->openRequested();
    EXPECT_EQ(stubs.workspace->opened.size(), 4U);
}

TEST_F(CloneCommandsTest, TheContextMenuActsOnTheRowBelowTheMouse) {
    const InstanceRecord home_ = addClone("Home");
    const InstanceRecord work = addClone("Work");
    open();
    select(home_);
    listen();
    openMenuBy(QContextMenuEvent::Mouse, middleOf(u"Work"_s));
    EXPECT_TRUE(contextMenu()->isVisible());
    EXPECT_EQ(window->content().sidebar().selection(), work.id());
    command(u"Reveal in Finder"_s)->trigger();
    EXPECT_TRUE(eventually([&] { return !stubs.workspace->revealed.empty(); }));
    EXPECT_THAT(stubs.workspace->revealed, ElementsAre(work.bundleURL));
    contextMenu()->close();
    openMenuBy(QContextMenuEvent::Mouse, list()->viewport()->rect().bottomRight() - QPoint(5, 5));
    EXPECT_FALSE(contextMenu()->isVisible()) << "there is no row";
    command(u"Edit…"_s)->trigger();
    EXPECT_THAT(asked, ElementsAre("edit Work"));
}

TEST_F(CloneCommandsTest, TheMenuKeyOpensTheContextMenuAtTheCurrentRow) {
    addClone("Home");
    const InstanceRecord& work = addClone("Work");
    open();
    openMenuBy(QContextMenuEvent::Keyboard, {});
    EXPECT_FALSE(contextMenu()->isVisible()) << "there is none";
    select(work);
    openMenuBy(QContextMenuEvent::Keyboard, {});
    ASSERT_TRUE(contextMenu()->isVisible());
    EXPECT_EQ(contextMenu()->pos(), list()->viewport()->mapToGlobal(middleOf(u"Work"_s)));
    EXPECT_EQ(window->content().sidebar().selection(), work.id());
    contextMenu()->close();
}

TEST_F(CloneCommandsTest, ActOnTheCloneAsItIsListedNow) {
    InstanceRecord work = addClone("Work");
    open();
    select(work);
    listen();
    work.config.displayName = "Changed";
    makeWrapper(work.bundleURL, work.config);
    stubs.model().reload();
    command(u"Edit…"_s)->trigger();
    EXPECT_THAT(asked, ElementsAre("edit Changed"));
}

} // namespace
} // namespace quorvel::testing
