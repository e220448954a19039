#include "QuorvelApp/library/CloneList.h"

#include "LaunchKit/Changes/ClonesLock.h"
#include "LaunchKit/InstanceConfig.h"
#include "QuorvelApp/library/CloneRow.h"
#include "tests/QuorvelApp/RealClones.h"
#include "tests/QuorvelApp/WindowFixture.h"

#include <QMenuBar>
#include <QSignalSpy>
#include <QTest>

#include <gmock/gmock.h>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using namespace Qt::StringLiterals;

// The names of real clones are edited where they are.
class CloneListTest : public WindowTest {
protected:
    void openWith(const InstanceRecord& clone) {
        open();
        select(clone);
        list()->setFocus();
    }

    CloneList* list() { return window->findChild<CloneList*>(); }
    QLineEdit* editor() { return list()->findChild<QLineEdit*>(CloneRow::editorName); }

    // Edits the selected clone's name and types another.
    void type(const QString& name) {
        QTest::keyClick(list(), Qt::Key_F2);
        ASSERT_NE(editor(), nullptr);
        QTest::keyClick(editor(), Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(editor(), name);
    }
    void press(Qt::Key key) { QTest::keyClick(editor(), key); }
    bool editingEnds() {
        return eventually([&] { return !list()->isEditing(); });
    }
    // The names once every background task has ended.
    std::string names() {
        std::string names;
        for (int row = 0; row < list()->model()->rowCount(); ++row) {
            names += list()->model()->index(row, 0).data().toString().toStdString() + "|";
        }
        return names;
    }
    bool lists(const std::string& expected) {
        return eventually([&] { return names() == expected; }, std::chrono::seconds(5));
    }
    bool staysSo(const std::string& expected) {
        (void)eventually([] { return false; }, std::chrono::milliseconds(60));
        return names() == expected && stubs.tasks->priorities.size() == tasksBefore;
    }
    void noteTasks() { tasksBefore = stubs.tasks->priorities.size(); }

    std::size_t tasksBefore = 0;
};

TEST_F(CloneListTest, F2EditsTheNameAndReturnEntersIt) {
    const InstanceRecord work = makeWebClone("Work");
    (void)makeWebClone("Xylophone");
    openWith(work);
    QTest::keyClick(list(), Qt::Key_F2);
    ASSERT_NE(editor(), nullptr);
    EXPECT_TRUE(editor()->hasFocus());
    EXPECT_EQ(editor()->text(), u"Work"_s);
    EXPECT_EQ(editor()->selectedText(), u"Work"_s);
    EXPECT_EQ(editor()->accessibleName(), u"Name"_s);
    QTest::keyClicks(editor(), u"Zebra"_s);
    press(Qt::Key_Return);
    EXPECT_TRUE(lists("Xylophone|Zebra|"));
    EXPECT_EQ(window->content().sidebar().selection(), (folder / "Zebra.app").string())
        << "the selection follows";
    EXPECT_TRUE(shown(u"Zebra"_s));
    EXPECT_TRUE(list()->hasFocus());
    EXPECT_TRUE(stubs.workspace->opened.empty()) << "Return was the field's";
    EXPECT_FALSE(stubs.model().lastError());
}

TEST_F(CloneListTest, TheCommandEditsTheNameTooAndOthersAreOffMeanwhile) {
    const InstanceRecord work = makeWebClone("Work");
    openWith(work);
    button(u"Launch"_s)->setFocus();
    command(u"Rename…"_s)->trigger();
    ASSERT_NE(editor(), nullptr);
    EXPECT_TRUE(editor()->hasFocus());
    for (const QString& words : {u"Rename…"_s, u"Edit…"_s, u"Duplicate…"_s, u"Delete…"_s}) {
        EXPECT_FALSE(command(words)->isEnabled()) << words.toStdString();
    }
    QTest::keyClick(editor(), Qt::Key_Delete);
    EXPECT_EQ(editor()->text(), QString()) << "which was selected";
    press(Qt::Key_Escape);
    EXPECT_TRUE(editingEnds());
    EXPECT_TRUE(command(u"Rename…"_s)->isEnabled());
}

TEST_F(CloneListTest, EscapeGivesUp) {
    openWith(makeWebClone("Work"));
    noteTasks();
    type(u"Play"_s);
    press(Qt::Key_Escape);
    EXPECT_TRUE(editingEnds());
    EXPECT_TRUE(staysSo("Work|"));
    EXPECT_TRUE(list()->hasFocus());
}

TEST_F(CloneListTest, LeavingTheFieldEntersTheName) {
    openWith(makeWebClone("Work"));
    type(u"Play"_s);
    button(u"Launch"_s)->setFocus();
    EXPECT_TRUE(lists("Play|"));
    EXPECT_EQ(window->focusWidget(), button(u"Launch"_s));
}

TEST_F(CloneListTest, TabEntersTheNameAndDoesNotGoOnToTheNextOne) {
    const InstanceRecord home_ = makeWebClone("Home");
    (void)makeWebClone("Work");
    openWith(home_);
    type(u"House"_s);
    press(Qt::Key_Tab);
    EXPECT_TRUE(lists("House|Work|"));
    EXPECT_TRUE(editingEnds());
    EXPECT_TRUE(list()->hasFocus());
}

TEST_F(CloneListTest, AMenuOrAnotherWindowInFrontDoesNotEndTheEditing) {
    openWith(makeWebClone("Work"));
    noteTasks();
    type(u"Pl"_s);
    window->menuBar()->setFocus(Qt::MenuBarFocusReason);
    EXPECT_TRUE(staysSo("Work|"));
    EXPECT_TRUE(list()->isEditing());
    editor()->setFocus();
    QWidget other;
    other.show();
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    EXPECT_FALSE(editor()->isActiveWindow());
    EXPECT_TRUE(list()->isEditing());
    EXPECT_TRUE(staysSo("Work|"));
    press(Qt::Key_Escape);
}

TEST_F(CloneListTest, ASheetThatAppearsMeanwhileDoesNotEndTheEditing) {
    openWith(makeWebClone("Work"));
    noteTasks();
    type(u"Pl"_s);
    stubs.model().setLastError("no");
    ASSERT_EQ(window->focusWidget(), button(u"OK"_s));
    EXPECT_TRUE(staysSo("Work|"));
    EXPECT_TRUE(list()->isEditing());
    button(u"OK"_s)->click();
    ASSERT_NE(editor(), nullptr);
    EXPECT_TRUE(editor()->hasFocus());
    EXPECT_EQ(editor()->text(), u"Pl"_s);
    press(Qt::Key_Return);
    EXPECT_TRUE(lists("Pl|"));
}

TEST_F(CloneListTest, NothingElseIsDoneWithACloneThatIsBeingRenamed) {
    openWith(makeWebClone("Work"));
    type(u"Play"_s);
    auto lock = lockClones(folder);
    QPushButton* remove = button(u"Delete"_s);
    QTest::mouseClick(remove, Qt::LeftButton);
    EXPECT_FALSE(shown(u"Delete “Work”?"_s)) << "the click has entered the name";
    EXPECT_FALSE(remove->isEnabled());
    for (const QString& words : {u"Open"_s, u"Edit…"_s, u"Delete…"_s}) {
        EXPECT_FALSE(command(words)->isEnabled()) << words.toStdString();
    }
    lock.reset();
    EXPECT_TRUE(lists("Play|"));
    EXPECT_TRUE(remove->isEnabled());
    EXPECT_EQ(window->focusWidget(), remove);
    EXPECT_TRUE(command(u"Delete…"_s)->isEnabled());
}

TEST_F(CloneListTest, AnEmptyOrUnchangedNameChangesNothing) {
    openWith(makeWebClone("Work"));
    noteTasks();
    for (const QString& name : {u"Work"_s, u" "_s}) {
        type(name);
        press(Qt::Key_Return);
        EXPECT_TRUE(editingEnds());
        EXPECT_TRUE(staysSo("Work|"));
    }
}

TEST_F(CloneListTest, WhatCantBeDoneIsAnAlertAndTheRowKeepsItsName) {
    const InstanceRecord work = makeWebClone("Work");
    (void)makeWebClone("Play");
    openWith(work);
    const auto before = treeOf(folder);
    for (const QString& name : {u"Play"_s, u"a/b"_s}) {
        type(name);
        press(Qt::Key_Return);
        ASSERT_TRUE(eventually([&] { return shown(u"Something went wrong"_s); }));
        EXPECT_EQ(names(), "Play|Work|");
        button(u"OK"_s)->click();
        EXPECT_TRUE(list()->hasFocus());
    }
    EXPECT_TRUE(treeOf(folder) == before);
    EXPECT_EQ(window->content().sidebar().selection(), work.id());
}

TEST_F(CloneListTest, ACloneThatIsDeletedMeanwhileTakesItsFieldWithIt) {
    const InstanceRecord work = makeWebClone("Work");
    openWith(work);
    type(u"Play"_s);
    noteTasks();
    fs::remove_all(work.bundleURL);
    stubs.model().reload();
    EXPECT_TRUE(editingEnds());
    EXPECT_FALSE(command(u"Rename…"_s)->isEnabled());
    EXPECT_TRUE(staysSo("")) << "no renaming was started";
    EXPECT_FALSE(stubs.model().lastError());
}

TEST_F(CloneListTest, AListThatIsReadAgainKeepsWhatWasTyped) {
    openWith(makeWebClone("Work"));
    type(u"Pl"_s);
    (void)makeWebClone("Another");
    stubs.model().reload();
    stubs.model().refreshRunningState();
    ASSERT_TRUE(list()->isEditing());
    EXPECT_EQ(editor()->text(), u"Pl"_s);
    press(Qt::Key_Return);
    EXPECT_TRUE(lists("Another|Pl|"));
}

TEST_F(CloneListTest, ANameWithHiddenCharactersIsShownHarmlesslyAndEditedAsItIs) {
    const QString name = u"A\u202e\tB"_s;
    InstanceConfig config = minimalConfig(name.toStdString());
    const InstanceRecord& clone = addClone("AB", config);
    openWith(clone);
    noteTasks();
    QTest::keyClick(list(), Qt::Key_F2);
    ASSERT_NE(editor(), nullptr);
    EXPECT_EQ(editor()->text(), name);
    press(Qt::Key_Return);
    EXPECT_TRUE(editingEnds());
    EXPECT_TRUE(staysSo(u"A\uFFFD B|"_s.toStdString()));
    const QSignalSpy entered(static_cast<CloneRow*>(list()->itemDelegate()),
                             &CloneRow::nameEntered);
    QTest::keyClick(list(), Qt::Key_F2);
    press(Qt::Key_End);
    QTest::keyClicks(editor(), u"C"_s);
    press(Qt::Key_Return);
    EXPECT_TRUE(editingEnds());
    ASSERT_EQ(entered.size(), 1);
    EXPECT_EQ(entered.at(0).at(1).toString(), name + u'C');
}

} // namespace
} // namespace quorvel::testing
