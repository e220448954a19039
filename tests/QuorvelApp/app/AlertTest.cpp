#include "LaunchKit/InstanceRecord.h"
#include "QuorvelApp/widgets/MessageSheet.h"
#include "QuorvelApp/widgets/Sheet.h"
#include "tests/QuorvelApp/WindowFixture.h"

#include <QTest>

namespace quorvel::testing {
namespace {

using namespace Qt::StringLiterals;

/// Alerts and the sheet, one above the other.
class AlertTest : public WindowTest {
protected:
    // The dialog that a click in the window's middle would reach.
    [[nodiscard]] QString topmost() const {
        const auto sheets = window->content().findChildren<Sheet*>(Qt::FindDirectChildrenOnly);
        QString name;
        for (const Sheet* sheet : sheets) {
            name = sheet->isVisible() ? sheet->dialog()->accessibleName() : name;
        }
        return name;
    }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(window->focusWidget() != nullptr ? window->focusWidget() : window.get(),
                        key, modifiers);
    }
};

TEST_F(AlertTest, TheSheetOpensBelowAnAlertAndGetsTheFocusAfterIt) {
    addApps();
    open();
    stubs.model().setLastError("no");
    press(Qt::Key_N, Qt::ControlModifier);
    ASSERT_TRUE(window->content().showingNewClone());
    EXPECT_EQ(topmost(), u"Something went wrong"_s);
    EXPECT_EQ(window->focusWidget(), button(u"OK"_s));
    press(Qt::Key_Return);
    EXPECT_FALSE(stubs.model().lastError());
    EXPECT_EQ(topmost(), u"New Shortcut"_s);
    EXPECT_EQ(window->focusWidget(), field(u"Search apps"_s));
}

TEST_F(AlertTest, TheSheetOpensBelowAQuestionToo) {
    const InstanceRecord work = addClone("Work");
    open();
    select(work);
    button(u"Delete"_s)->click();
    press(Qt::Key_N, Qt::ControlModifier);
    EXPECT_EQ(topmost(), u"Delete “Work”?"_s);
    EXPECT_EQ(window->focusWidget(), button(u"Cancel"_s));
}

TEST_F(AlertTest, ASheetThatEndsBelowAnAlertLeavesItTheFocus) {
    const InstanceRecord work = addClone("Work");
    addApps();
    stubs.create = [&](const auto& request) { return addClone(request.displayName).bundleURL; };
    open();
    select(work);
    button(u"Launch"_s)->setFocus();
    openSheet();
    choose(u"Notes"_s);
    field(u"Name"_s)->setFocus();
    stubs.tasks->holding = true;
    button(u"Create Shortcut"_s)->click();
    stubs.model().setLastError("no");
    stubs.tasks->release();
    ASSERT_TRUE(eventually([&] { return window->findChild<NewCloneView*>() == nullptr; }));
    EXPECT_EQ(topmost(), u"Something went wrong"_s);
    EXPECT_EQ(window->focusWidget(), button(u"OK"_s));
    press(Qt::Key_Return);
    EXPECT_EQ(topmost(), QString());
    EXPECT_EQ(window->focusWidget(), button(u"Launch"_s)) << "where it was before both";
}

TEST_F(AlertTest, TheFocusGoesBackIntoTheSheetBelow) {
    openSheetWith(u"Notes"_s);
    field(u"Name"_s)->setFocus();
    stubs.model().setStatusMessage("moved");
    stubs.model().setLastError("no");
    EXPECT_EQ(topmost(), u"Something went wrong"_s);
    press(Qt::Key_Return);
    EXPECT_EQ(topmost(), u"Done"_s);
    EXPECT_EQ(window->focusWidget(), button(u"OK"_s));
    press(Qt::Key_Return);
    EXPECT_EQ(window->focusWidget(), field(u"Name"_s));
}

TEST_F(AlertTest, KeepsTheMnemonicsOfTheSheetBelow) {
    stubs.probe = [] { return ProbeResult{}; };
    NewCloneView& sheet = openSheetWith(u"Notes"_s);
    stubs.model().setLastError("no");
    press(Qt::Key_T, Qt::AltModifier);
    EXPECT_FALSE(eventually([&] { return sheet.session().form().detecting; },
                            std::chrono::milliseconds(200)));
    press(Qt::Key_Return);
    press(Qt::Key_T, Qt::AltModifier);
    EXPECT_TRUE(eventually([&] { return sheet.session().form().detectNote.has_value(); }));
}

} // namespace
} // namespace quorvel::testing
