#include "LaunchKit/InstanceRecord.h"
#include "QuorvelApp/library/LogPanel.h"
#include "QuorvelApp/panels/DuplicateView.h"
#include "QuorvelApp/panels/EditCloneView.h"
#include "QuorvelApp/widgets/MessageSheet.h"
#include "tests/QuorvelApp/WindowFixture.h"

#include <QAccessible>
#include <QCheckBox>
#include <QComboBox>
#include <QListView>
#include <QPlainTextEdit>
#include <QTest>

namespace quorvel::testing {
namespace {

using namespace Qt::StringLiterals;

class AccessibilityTest : public WindowTest {};

// Every control in view, with the role that a screen reader announces.
int checkedControls(QWidget* window) {
    int controls = 0;
    for (QWidget* widget : window->findChildren<QWidget*>()) {
        const bool label = qobject_cast<QLabel*>(widget) != nullptr;
        if (!widget->isVisible() || (widget->focusPolicy() & Qt::TabFocus) == 0 ||
            widget->focusProxy() != nullptr) {
            continue;
        }
        const QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(widget);
        const QAccessible::Role role =
            qobject_cast<QLineEdit*>(widget) || qobject_cast<QPlainTextEdit*>(widget)
                ? QAccessible::EditableText
            : qobject_cast<QCheckBox*>(widget) ? QAccessible::CheckBox
            : qobject_cast<QComboBox*>(widget) ? QAccessible::ComboBox
            : qobject_cast<QListView*>(widget) ? QAccessible::List
            : label                            ? QAccessible::StaticText
                                               : QAccessible::Button;
        const auto* asButton = qobject_cast<QPushButton*>(widget);
        const bool switches = asButton != nullptr && asButton->isCheckable();
        EXPECT_EQ(accessible->role(), switches ? accessible->role() : role)
            << widget->metaObject()->className();
        EXPECT_NE(accessible->role(), QAccessible::NoRole);
        EXPECT_FALSE(accessible->text(QAccessible::Name).isEmpty())
            << widget->metaObject()->className();
        ++controls;
    }
    return controls;
}

TEST_F(AccessibilityTest, EveryControlOfTheMainWindowHasANameAndARole) {
    open();
    EXPECT_GE(checkedControls(window.get()), 2) << "both ways to the first clone";
    const InstanceRecord& work = addClone("Work");
    write(home / "QuorvelInstances/Work/Downloads/a", "x");
    stubs.model().reload();
    select(work);
    EXPECT_GE(checkedControls(window.get()), 12) << "list, actions, callout and details";
}

TEST_F(AccessibilityTest, EveryControlOfTheSheetHasANameAndARole) {
    openSheetWith(u"Notes"_s);
    button(u"Advanced options"_s)->click();
    EXPECT_GT(checkedControls(window.get()), 20);
    for (const QString& kind : {u"Web App"_s, u"File / Folder"_s, u"Command"_s}) {
        button(kind)->click();
        EXPECT_GE(checkedControls(window.get()), 4) << kind.toStdString();
    }
    EXPECT_EQ(QAccessible::queryAccessibleInterface(window->findChild<NewCloneView*>())->role(),
              QAccessible::Dialog);
}

TEST_F(AccessibilityTest, EveryControlOfTheLogHasANameAndARole) {
    const InstanceRecord& work = addClone("Work");
    open();
    select(work);
    const int before = checkedControls(window.get());
    command(u"Show Log"_s)->trigger();
    EXPECT_GE(checkedControls(window.get()), before + 4) << "the text and three buttons";
    auto* log = QAccessible::queryAccessibleInterface(window->findChild<LogPanel*>());
    EXPECT_EQ(log->role(), QAccessible::Dialog);
    EXPECT_EQ(log->text(QAccessible::Name), u"Log of “Work”"_s);
}

TEST_F(AccessibilityTest, EveryControlOfTheSheetsForACloneHasANameAndARole) {
    const InstanceRecord& work = addClone("Work");
    open();
    select(work);
    command(u"Edit…"_s)->trigger();
    ASSERT_TRUE(eventually([&] { return window->findChild<EditCloneView*>() != nullptr; }));
    button(u"Advanced options"_s)->click();
    EXPECT_GT(checkedControls(window.get()), 20);
    const auto* sheet = QAccessible::queryAccessibleInterface(window->findChild<EditCloneView*>());
    EXPECT_EQ(sheet->role(), QAccessible::Dialog);
    EXPECT_EQ(sheet->text(QAccessible::Name), u"Edit “Work”"_s);
    button(u"Cancel"_s)->click();
    command(u"Duplicate…"_s)->trigger();
    EXPECT_GT(checkedControls(window.get()), 4);
    const auto* panel = QAccessible::queryAccessibleInterface(window->findChild<DuplicateView*>());
    EXPECT_EQ(panel->role(), QAccessible::Dialog);
    EXPECT_EQ(panel->text(QAccessible::Name), u"Duplicate “Work”"_s);
}

TEST_F(AccessibilityTest, AMessageIsADialogNamedByItsTitleAndText) {
    open();
    stubs.model().setLastError("It did not work.");
    auto* message = QAccessible::queryAccessibleInterface(window->findChild<MessageSheet*>());
    EXPECT_EQ(message->role(), QAccessible::Dialog);
    EXPECT_EQ(message->text(QAccessible::Name), u"Something went wrong"_s);
    EXPECT_EQ(message->text(QAccessible::Description), u"It did not work."_s);
    EXPECT_GT(checkedControls(window.get()), 0);
}

TEST_F(AccessibilityTest, ItemsDescribeWhatTheirPicturesShow) {
    addClone("Work");
    stubs.workspace->setRunning({WrapperFactory::defaultBundleId("Work")});
    stubs.sandboxed = {"/Applications/Mail.app"};
    addApps();
    open();
    auto* clones = window->content().sidebar().findChild<QListView*>();
    EXPECT_EQ(QAccessible::queryAccessibleInterface(clones)->child(0)->text(QAccessible::Name),
              u"Work, Running"_s);
    openSheet();
    (void)window->grab();
    ASSERT_TRUE(eventually([&] { return stubs.model().sandboxStatus().size() == 3; }));
    auto* apps = QAccessible::queryAccessibleInterface(window->findChild<AppGrid*>());
    EXPECT_EQ(apps->child(0)->text(QAccessible::Name), u"Mail"_s);
    EXPECT_EQ(apps->child(0)->text(QAccessible::Description),
              u"Sandboxed — you'll get a separate Dock icon, but macOS won't let Quorvel isolate "
              u"its data"_s);
}

TEST_F(AccessibilityTest, TheFocusStaysInTheSheet) {
    addApps();
    addClone("Work");
    open();
    NewCloneView& sheet = openSheet();
    choose(u"Notes"_s);
    ASSERT_TRUE(sheet.isAncestorOf(window->focusWidget())) << "from the beginning";
    for (int step = 0; step < 40; ++step) {
        QTest::keyClick(window->focusWidget(), Qt::Key_Tab);
        ASSERT_TRUE(sheet.isAncestorOf(window->focusWidget())) << step;
    }
}

} // namespace
} // namespace quorvel::testing
