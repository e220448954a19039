#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/InstanceRecord.h"
#include "QuorvelApp/panels/DuplicateView.h"
#include "QuorvelApp/panels/EditCloneView.h"
#include "QuorvelApp/widgets/MessageSheet.h"
#include "tests/QuorvelApp/WindowFixture.h"

#include <QComboBox>
#include <QListView>
#include <QPlainTextEdit>
#include <QTest>

#include <gmock/gmock.h>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using namespace Qt::StringLiterals;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

class KeyboardTest : public WindowTest {
protected:
    void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(window->focusWidget() != nullptr ? window->focusWidget() : window.get(),
                        static_cast<Qt::Key>(key), modifiers);
    }

    NewCloneForm form() { return window->findChild<NewCloneView*>()->session().form(); }
    AppGrid* grid() { return window->findChild<AppGrid*>(); }
    QString ring() { return grid()->currentIndex().data().toString(); }

    // The names of the controls in tab order, from the first one until it has the focus again.
    std::vector<QString> tabOrder() {
        std::vector<QString> names;
        for (const QWidget* first = window->focusWidget(); names.size() < 40;) {
            const QWidget* now = window->focusWidget();
            const auto* asButton = qobject_cast<const QAbstractButton*>(now);
            names.push_back(!now->accessibleName().isEmpty() || asButton == nullptr
                                ? now->accessibleName()
                                : asButton->text().remove(u'&'));
            press(Qt::Key_Tab);
            if (window->focusWidget() == first) {
                break;
            }
        }
        return names;
    }

    void makeClones() {
        stubs.create = [&](const auto& request) { return addWrapper(request.displayName); };
    }
    bool sheetIsGone() {
        return eventually([&] { return window->findChild<NewCloneView*>() == nullptr; });
    }
};

TEST_F(KeyboardTest, TheSheetBeginsInTheSearchFieldAndGoesThroughItsPanesInOrder) {
    openSheetWith(u"Notes"_s);
    EXPECT_THAT(tabOrder(),
                ElementsAre(u"Search apps"_s, u"App"_s, u"Apps"_s, u"Name"_s, u"Auto-detect"_s,
                            u"Isolation strategy"_s, u"Advanced options"_s,
                            u"Launch after creating"_s, u"Cancel"_s, u"Create Shortcut"_s));
}

TEST_F(KeyboardTest, TheSheetsForACloneOpenByKeyAndGoThroughTheirFieldsInOrder) {
    InstanceConfig config = minimalConfig("Work");
    config.kind = ShortcutKind::web;
    config.url = "a.test";
    const InstanceRecord& work = addClone("Work", config);
    open();
    select(work);
    press(Qt::Key_E, Qt::ControlModifier);
    ASSERT_TRUE(eventually([&] { return window->findChild<EditCloneView*>() != nullptr; }));
    EXPECT_EQ(window->focusWidget()->accessibleName(), u"Website URL"_s);
    window->findChild<EditCloneView*>()->session().edit(
        [](NewCloneForm& form) { form.hideDockIcon = true; }); // so that it can be saved
    EXPECT_THAT(tabOrder(), ElementsAre(u"Website URL"_s, u"Get Icon"_s, u"Name"_s,
                                        u"Advanced options"_s, u"Cancel"_s, u"Save"_s));
    press(Qt::Key_Escape);
    ASSERT_TRUE(eventually([&] { return window->findChild<EditCloneView*>() == nullptr; }));
    press(Qt::Key_D, Qt::ControlModifier);
    ASSERT_NE(window->findChild<DuplicateView*>(), nullptr);
    EXPECT_THAT(tabOrder(),
                ElementsAre(u"Name"_s, u"Copy the data"_s, u"Cancel"_s, u"Duplicate"_s));
}

TEST_F(KeyboardTest, TheAdvancedOptionsComeInTheirOwnOrder) {
    openSheetWith(u"Notes"_s);
    button(u"Advanced options"_s)->click();
    button(u"Advanced options"_s)->setFocus();
    const std::vector<QString> order = tabOrder();
    const std::vector<QString> expected{u"Advanced options"_s,
                                        u"Data location"_s,
                                        u"Choose…"_s,
                                        u"Choose .icns…"_s,
                                        u"Icon label"_s,
                                        u"Badge color"_s,
                                        u"Launch arguments"_s,
                                        u"Environment variables"_s,
                                        u"Info.plist overrides"_s,
                                        u"Show a menu-bar icon while running"_s,
                                        u"Hide this clone's Dock icon (menu-bar/background app)"_s,
                                        u"Register as a browser / URL handler"_s,
                                        u"Show in Finder's “Open With”"_s,
                                        u"Isolate this clone's Downloads, Documents & Desktop"_s,
                                        u"Links"_s,
                                        u"Launch after creating"_s};
    ASSERT_GE(order.size(), expected.size());
    EXPECT_THAT(std::vector(order.begin(), order.begin() + static_cast<long>(expected.size())),
                ElementsAreArray(expected));
}

TEST_F(KeyboardTest, TabGoesBackwardsToo) {
    openSheetWith(u"Notes"_s);
    press(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(window->focusWidget(), button(u"Create Shortcut"_s));
}

TEST_F(KeyboardTest, ArrowsMoveTheRingAndSpaceOrReturnSelects) {
    addApps();
    open();
    openSheet();
    (void)window->grab();
    grid()->setFocus();
    EXPECT_EQ(ring(), u"Mail"_s) << "the first tile";
    press(Qt::Key_Right);
    press(Qt::Key_Right);
    EXPECT_EQ(ring(), u"Zoom"_s);
    EXPECT_FALSE(form().selected) << "neither focus nor arrows choose";
    press(Qt::Key_Space);
    ASSERT_TRUE(form().selected);
    EXPECT_EQ(form().selected->name, "Zoom");
    press(Qt::Key_Home);
    EXPECT_EQ(form().selected->name, "Zoom");
    press(Qt::Key_Return);
    EXPECT_EQ(form().selected->name, "Mail");
    EXPECT_EQ(form().cloneName, "Mail (2)");
    EXPECT_FALSE(form().creating) << "the first Return was the tile's";
}

TEST_F(KeyboardTest, TheRingBeginsAtTheSelectedTile) {
    openSheetWith(u"Notes"_s);
    grid()->setFocus();
    EXPECT_EQ(ring(), u"Notes"_s);
}

TEST_F(KeyboardTest, OnlyPressingATileReplacesNameAndOptions) {
    openSheetWith(u"Notes"_s);
    const auto customize = [&] {
        field(u"Name"_s)->setText(u"Mine"_s);
        field(u"Launch arguments"_s)->setText(u"--mine"_s);
    };
    button(u"Advanced options"_s)->click();
    customize();
    grid()->setFocus();
    press(Qt::Key_Left);
    EXPECT_EQ(ring(), u"Mail"_s);
    press(Qt::Key_Right);
    EXPECT_EQ(form().cloneName, "Mine");
    EXPECT_EQ(form().argsText, "--mine");
    press(Qt::Key_Space);
    EXPECT_EQ(form().cloneName, "Notes (2)") << "pressing the selected tile selects it again";
    EXPECT_EQ(form().argsText, "");
    customize();
    QTest::mouseClick(grid()->viewport(), Qt::LeftButton, {}, middleOfTile(u"Notes"_s));
    EXPECT_EQ(form().cloneName, "Notes (2)");
    EXPECT_EQ(form().argsText, "");
}

TEST_F(KeyboardTest, TheRingShows) {
    openSheetWith(u"Notes"_s);
    grid()->setFocus();
    const auto cell = [&](int row) {
        return grid()->viewport()->grab(grid()->visualRect(grid()->model()->index(row, 0)));
    };
    const QImage without = cell(0).toImage();
    press(Qt::Key_Left);
    EXPECT_EQ(ring(), u"Mail"_s);
    EXPECT_NE(cell(0).toImage(), without);
}

TEST_F(KeyboardTest, ArrowsGoFromRowToRow) {
    for (int number = 10; number < 40; ++number) {
        const std::string name = "App " + std::to_string(number);
        stubs.installed.push_back({.url = "/Applications/" + name + ".app", .name = name});
    }
    open();
    openSheet();
    (void)window->grab();
    grid()->setFocus();
    press(Qt::Key_Home);
    const QRect first = grid()->visualRect(grid()->currentIndex());
    press(Qt::Key_Down);
    const QRect below = grid()->visualRect(grid()->currentIndex());
    EXPECT_EQ(below.left(), first.left());
    EXPECT_GT(below.top(), first.top());
}

TEST_F(KeyboardTest, TypingFindsAnAppInTheGrid) {
    openSheetWith(u"Mail"_s);
    grid()->setFocus();
    QTest::keyClicks(grid(), u"zo"_s);
    EXPECT_EQ(ring(), u"Zoom"_s);
    EXPECT_EQ(form().selected->name, "Mail");
    press(Qt::Key_Space);
    EXPECT_EQ(form().selected->name, "Zoom");
}

TEST_F(KeyboardTest, ArrowsGoThroughTheKinds) {
    openSheetWith(u"Notes"_s);
    button(u"App"_s)->setFocus();
    press(Qt::Key_Right);
    EXPECT_EQ(form().shortcutType, ShortcutKind::web);
    press(Qt::Key_Right);
    EXPECT_EQ(form().shortcutType, ShortcutKind::file);
    press(Qt::Key_Left);
    EXPECT_EQ(form().shortcutType, ShortcutKind::web);
}

TEST_F(KeyboardTest, ReturnCreatesFromEveryFieldOfOneLine) {
    makeClones();
    addApps();
    open();
    const std::vector<std::function<QWidget*()>> places{
        [this] { return field(u"Search apps"_s); }, [this] { return field(u"Name"_s); },
        [this] { return grid(); }, [this] { return window->findChild<QComboBox*>(); }};
    for (const auto& place : places) {
        openSheet();
        choose(u"Notes"_s);
        place()->setFocus();
        press(Qt::Key_Return);
        EXPECT_TRUE(sheetIsGone());
    }
}

TEST_F(KeyboardTest, ReturnMakesALineInAnEditor) {
    openSheetWith(u"Notes"_s);
    button(u"Advanced options"_s)->click();
    window->findChild<QPlainTextEdit*>()->setFocus();
    press(Qt::Key_Return);
    EXPECT_EQ(form().envText, "\n");
    EXPECT_FALSE(form().creating);
}

TEST_F(KeyboardTest, ReturnDoesNothingWhileThereIsNothingToCreate) {
    addApps();
    open();
    openSheet();
    field(u"Search apps"_s)->setFocus();
    press(Qt::Key_Return);
    EXPECT_FALSE(form().creating);
    EXPECT_TRUE(window->content().showingNewClone());
}

TEST_F(KeyboardTest, ReturnWhileCreatingDoesNotCreateTwice) {
    int made = 0;
    stubs.create = [&](const auto& request) {
        ++made;
        return addWrapper(request.displayName);
    };
    openSheetWith(u"Notes"_s);
    stubs.tasks->holding = true;
    field(u"Name"_s)->setFocus();
    press(Qt::Key_Return);
    press(Qt::Key_Return);
    stubs.tasks->release();
    EXPECT_TRUE(sheetIsGone());
    EXPECT_EQ(made, 1);
}

TEST_F(KeyboardTest, EscapeCancelsFromEveryControl) {
    addApps();
    open();
    for (const QString& name : {u"Search apps"_s, u"Name"_s}) {
        openSheet();
        choose(u"Notes"_s);
        field(name)->setFocus();
        press(Qt::Key_Escape);
        EXPECT_FALSE(window->content().showingNewClone()) << name.toStdString();
        EXPECT_TRUE(sheetIsGone());
    }
    openSheet();
    grid()->setFocus();
    press(Qt::Key_Escape);
    EXPECT_FALSE(window->content().showingNewClone());
    EXPECT_EQ(cloneCount(), 0U);
}

TEST_F(KeyboardTest, TheCommandsHaveTheirShortcuts) {
    open();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    addClone("Work");
    press(Qt::Key_R, Qt::ControlModifier);
    EXPECT_EQ(cloneCount(), 1U);
    press(Qt::Key_N, Qt::ControlModifier);
    EXPECT_TRUE(window->content().showingNewClone());
    EXPECT_FALSE(stubs.model().startNewCloneRequested());
}

TEST_F(KeyboardTest, ArrowsAndTypingMoveInTheListOfClones) {
    addClone("Home");
    addClone("Play");
    const InstanceRecord& work = addClone("Work");
    open();
    auto* list = window->content().sidebar().findChild<QListView*>();
    list->setFocus();
    press(Qt::Key_Down);
    EXPECT_TRUE(shown(u"Home"_s));
    press(Qt::Key_Down);
    EXPECT_TRUE(shown(u"Play"_s));
    QTest::keyClicks(list, u"w"_s);
    EXPECT_EQ(window->content().sidebar().selection(), work.id());
}

TEST_F(KeyboardTest, TheDialogOfADeletionBeginsAtItsCancelButton) {
    const InstanceRecord& work = addClone("Work");
    open();
    select(work);
    button(u"Delete"_s)->click();
    EXPECT_EQ(window->focusWidget(), button(u"Cancel"_s));
    press(Qt::Key_Space);
    EXPECT_FALSE(shown(u"Delete “Work”?"_s));
    QTest::keyClick(window.get(), Qt::Key_D, Qt::AltModifier);
    ASSERT_TRUE(eventually([&] { return shown(u"Delete “Work”?"_s); }));
    press(Qt::Key_Space);
    EXPECT_FALSE(shown(u"Delete “Work”?"_s));
    EXPECT_TRUE(fs::exists(work.bundleURL));
}

TEST_F(KeyboardTest, TheDialogOfAMigrationBeginsAtItsFirstButton) {
    const InstanceRecord& work = addClone("Work");
    write(home / "QuorvelInstances/Work/Downloads/a", "x");
    open();
    select(work);
    button(u"Move files to shared folders"_s)->click();
    EXPECT_EQ(window->focusWidget(), button(u"Move Files & Share"_s));
}

TEST_F(KeyboardTest, ReturnPressesTheButtonThatHasTheRing) {
    const InstanceRecord& work = addClone("Work");
    openSheetWith(u"Notes"_s);
    button(u"Cancel"_s)->setFocus();
    press(Qt::Key_Return);
    EXPECT_FALSE(form().creating);
    EXPECT_FALSE(window->content().showingNewClone());
    EXPECT_TRUE(sheetIsGone());

    select(work);
    button(u"Launch"_s)->setFocus();
    press(Qt::Key_Return);
    EXPECT_EQ(stubs.workspace->opened.size(), 1U) << "in the window too";

    button(u"Delete"_s)->click();
    button(u"Delete Clone Only"_s)->setFocus();
    press(Qt::Key_Return);
    EXPECT_TRUE(eventually([&] { return !fs::exists(work.bundleURL); }));
}

TEST_F(KeyboardTest, TheDefaultButtonStaysSoOnceTheFocusHasLeftIt) {
    makeClones();
    openSheetWith(u"Notes"_s);
    button(u"Create Shortcut"_s)->setFocus();
    button(u"Cancel"_s)->setFocus();
    field(u"Name"_s)->setFocus();
    press(Qt::Key_Return);
    EXPECT_TRUE(sheetIsGone());
    EXPECT_EQ(cloneCount(), 1U);
}

TEST_F(KeyboardTest, ReturnInTheDialogOfADeletionDeletesNothing) {
    const InstanceRecord& work = addClone("Work");
    open();
    select(work);
    button(u"Delete"_s)->click();
    press(Qt::Key_Return);
    EXPECT_FALSE(shown(u"Delete “Work”?"_s));
    EXPECT_TRUE(fs::exists(work.bundleURL));
}

TEST_F(KeyboardTest, ReturnDismissesAMessageAndTheFocusGoesBack) {
    const InstanceRecord& work = addClone("Work");
    open();
    select(work);
    button(u"Launch"_s)->setFocus();
    stubs.model().setLastError("no");
    EXPECT_EQ(window->focusWidget(), button(u"OK"_s));
    press(Qt::Key_Return);
    EXPECT_FALSE(stubs.model().lastError());
    EXPECT_EQ(window->focusWidget(), button(u"Launch"_s));
}

} // namespace
} // namespace quorvel::testing
