#include "QuorvelApp/app/EditMenu.h"

#include "LaunchKit/InstanceRecord.h"
#include "tests/QuorvelApp/WindowFixture.h"

#include <QApplication>
#include <QClipboard>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QTest>

namespace quorvel::testing {
namespace {

using namespace Qt::StringLiterals;

class EditMenuTest : public WindowTest {
protected:
    void SetUp() override {
        QApplication::clipboard()->clear();
        openSheetWith(u"Notes"_s);
        name_ = field(u"Name"_s);
        name_->setFocus();
        name_->selectAll();
        QTest::keyClicks(name_, u"One"_s);
    }

    void choose(const QString& text) {
        ASSERT_TRUE(enabled(text)) << text.toStdString();
        command(text)->trigger();
    }

    bool enabled(const QString& text) {
        Q_EMIT window->findChild<EditMenu*>()->aboutToShow();
        return command(text)->isEnabled();
    }

    QLineEdit* name_ = nullptr;
};

TEST_F(EditMenuTest, UndoesAndRedoesInTheFieldThatHasTheFocus) {
    EXPECT_FALSE(enabled(u"Redo"_s));
    choose(u"Undo"_s);
    EXPECT_NE(name_->text(), u"One"_s);
    choose(u"Redo"_s);
    EXPECT_EQ(name_->text(), u"One"_s);
}

TEST_F(EditMenuTest, KnowsTheFieldWhileTheMenuBarIsUsedWithTheKeyboard) {
    window->menuBar()->setFocus(Qt::MenuBarFocusReason);
    ASSERT_FALSE(name_->hasFocus());
    choose(u"Undo"_s);
    EXPECT_NE(name_->text(), u"One"_s);
}

TEST_F(EditMenuTest, CutsCopiesAndPastes) {
    EXPECT_FALSE(enabled(u"Cut"_s)) << "nothing is selected";
    EXPECT_FALSE(enabled(u"Copy"_s));
    EXPECT_FALSE(enabled(u"Paste"_s)) << "the clipboard is empty";
    choose(u"Select All"_s);
    choose(u"Copy"_s);
    EXPECT_EQ(QApplication::clipboard()->text(), u"One"_s);
    EXPECT_EQ(name_->text(), u"One"_s);
    choose(u"Cut"_s);
    EXPECT_EQ(name_->text(), QString());
    EXPECT_FALSE(enabled(u"Select All"_s));
    choose(u"Paste"_s);
    EXPECT_EQ(name_->text(), u"One"_s);
}

TEST_F(EditMenuTest, ActsInAnEditorOfSeveralLines) {
    button(u"Advanced options"_s)->click();
    auto* editor = window->findChild<QPlainTextEdit*>();
    editor->setFocus();
    QTest::keyClicks(editor, u"A=1"_s);
    choose(u"Select All"_s);
    EXPECT_EQ(editor->textCursor().selectedText(), u"A=1"_s);
    choose(u"Cut"_s);
    EXPECT_EQ(editor->toPlainText(), QString());
    EXPECT_EQ(name_->text(), u"One"_s) << "which no longer has the focus";
}

TEST_F(EditMenuTest, HasNothingToDoWhereThereIsNoText) {
    button(u"Cancel"_s)->setFocus();
    for (const QString& text :
         {u"Undo"_s, u"Redo"_s, u"Cut"_s, u"Copy"_s, u"Paste"_s, u"Select All"_s}) {
        EXPECT_FALSE(enabled(text)) << text.toStdString();
    }
}

TEST_F(EditMenuTest, ItsKeysActOnceInAField) {
    QApplication::clipboard()->setText(u"Two"_s);
    ASSERT_TRUE(enabled(u"Paste"_s));
    QTest::keyClick(name_, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(name_->text(), u"OneTwo"_s);
    QTest::keyClick(name_, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(name_, Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(name_->text(), QString());
    EXPECT_EQ(QApplication::clipboard()->text(), u"OneTwo"_s);
    QTest::keyClick(name_, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(name_->text(), u"OneTwo"_s);
}

} // namespace
} // namespace quorvel::testing
