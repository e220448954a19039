#include "tests/QuorvelApp/WindowFixture.h"

#include <QAccessible>
#include <QTest>

namespace quorvel::testing {
namespace {

using namespace Qt::StringLiterals;

class AccessibilityTest : public WindowTest {};

TEST_F(AccessibilityTest, EveryControlHasAnAccessibleNameAndRole) {
    addApps();
    addClone("Work");
    open();
    window->content().sidebar().select((folder / "Work.app").string());
    openSheet();
    choose(u"Notes"_s);
    button(u"Advanced options"_s)->click();
    int controls = 0;
    for (QWidget* widget : window->findChildren<QWidget*>()) {
        if (!widget->isVisible() || (widget->focusPolicy() & Qt::TabFocus) == 0 ||
            widget->focusProxy() != nullptr) {
            continue;
        }
        const QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(widget);
        ASSERT_NE(accessible, nullptr);
        EXPECT_FALSE(accessible->text(QAccessible::Name).isEmpty())
            << widget->metaObject()->className();
        EXPECT_NE(accessible->role(), QAccessible::NoRole);
        ++controls;
    }
    EXPECT_GT(controls, 20);
    EXPECT_EQ(QAccessible::queryAccessibleInterface(window->findChild<NewCloneView*>())->role(),
              QAccessible::Dialog);
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
