#include "QuorvelApp/library/LogPanel.h"

#include "LaunchKit/InstanceRecord.h"
#include "tests/QuorvelApp/WindowFixture.h"

#include <QClipboard>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTest>

#include <gmock/gmock.h>

#include <fstream>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using namespace Qt::StringLiterals;
using ::testing::ElementsAre;

class LogPanelTest : public WindowTest {
protected:
    // Opens the log of a clone that has printed this.
    void openLog(const std::string& bytes) {
        if (!bytes.empty()) {
            write(log, bytes);
        }
        const InstanceRecord& work = addClone("Work");
        open();
        select(work);
        command(u"Show Log"_s)->trigger();
        text = window->findChild<QPlainTextEdit*>(u"log"_s);
        ASSERT_NE(text, nullptr);
    }
    void add(const std::string& bytes) const {
        std::ofstream(log, std::ios::app | std::ios::binary) << bytes;
    }
    bool says(const QString& end) {
        return eventually([&] { return text->toPlainText().endsWith(end); });
    }
    static std::string lines(int first, int end) {
        std::string all;
        for (int number = first; number < end; ++number) {
            all += "line " + std::to_string(number) + "\n";
        }
        return all;
    }
    QString firstShownLine() const { return text->cursorForPosition({2, 2}).block().text(); }
    bool isAtEnd() const {
        return text->verticalScrollBar()->value() == text->verticalScrollBar()->maximum();
    }

    fs::path log = home / "QuorvelInstances/Work/quorvel-instance.log";
    QPlainTextEdit* text = nullptr;
};

TEST_F(LogPanelTest, ShowsTheLogLiveUntilEscapeClosesIt) {
    openLog("started\n");
    EXPECT_TRUE(shown(u"Log of “Work”"_s));
    EXPECT_TRUE(says(u"started\n"_s));
    add("<b>still</b> \x1b[1m\n");
    EXPECT_TRUE(says(u"started\n<b>still</b> \\u{1b}[1m\n"_s)) << "as plain text";
    EXPECT_TRUE(text->isReadOnly());
    EXPECT_FALSE(command(u"Show Log"_s)->isEnabled());
    command(u"New Clone…"_s)->trigger();
    EXPECT_FALSE(window->content().showingNewClone());
    QTest::keyClick(text, Qt::Key_Escape);
    EXPECT_TRUE(eventually([&] { return window->findChild<LogPanel*>() == nullptr; }));
    EXPECT_TRUE(command(u"Show Log"_s)->isEnabled());
    command(u"New Clone…"_s)->trigger();
    EXPECT_TRUE(window->content().showingNewClone());
}

TEST_F(LogPanelTest, SaysThatThereIsNoneYet) {
    openLog({});
    EXPECT_EQ(text->placeholderText(),
              u"There is no log yet. What the clone prints appears here."_s);
    EXPECT_TRUE(text->toPlainText().isEmpty());
    write(log, "now\n");
    EXPECT_TRUE(says(u"now\n"_s));
}

TEST_F(LogPanelTest, FollowsTheEndUnlessItWasScrolledUp) {
    openLog(lines(0, 200));
    EXPECT_TRUE(says(u"line 199\n"_s));
    EXPECT_TRUE(isAtEnd());
    add(lines(200, 220));
    EXPECT_TRUE(says(u"line 219\n"_s));
    EXPECT_TRUE(isAtEnd());
    text->verticalScrollBar()->setValue(50);
    const QString before = firstShownLine();
    add(lines(220, 240));
    EXPECT_TRUE(says(u"line 239\n"_s));
    EXPECT_EQ(firstShownLine(), before);
    text->verticalScrollBar()->setValue(text->verticalScrollBar()->maximum());
    add("end\n");
    EXPECT_TRUE(says(u"end\n"_s));
    EXPECT_TRUE(isAtEnd());
}

TEST_F(LogPanelTest, KeepsOnlyTheNewestLinesAndStaysWithTheOnesInView) {
    openLog(lines(0, LogPanel::mostLines - 10));
    ASSERT_TRUE(says(u"line 9989\n"_s));
    EXPECT_FALSE(shown(u"The oldest lines are left out."_s));
    text->verticalScrollBar()->setValue(5000);
    const QString before = firstShownLine();
    add(lines(LogPanel::mostLines - 10, LogPanel::mostLines + 2000));
    ASSERT_TRUE(says(u"line 11999\n"_s));
    EXPECT_EQ(text->blockCount(), LogPanel::mostLines);
    EXPECT_TRUE(shown(u"The oldest lines are left out."_s));
    EXPECT_EQ(firstShownLine(), before);
}

TEST_F(LogPanelTest, SaysThatTheFirstLinesOfALongLogAreLeftOut) {
    openLog(lines(0, LogPanel::mostLines));
    EXPECT_TRUE(says(u"line 9999\n"_s));
    EXPECT_TRUE(shown(u"The oldest lines are left out."_s));
    EXPECT_TRUE(text->toPlainText().startsWith(u"line 1\n"_s));
}

TEST_F(LogPanelTest, SaysHowMuchOfALargeLogIsLeftOut) {
    std::string bytes;
    while (bytes.size() < LogFollower::most * 5 / 2) {
        bytes += std::string(499, 'x') + "\n";
    }
    openLog(bytes + "end\n");
    EXPECT_TRUE(says(u"end\n"_s));
    EXPECT_TRUE(shown(u"The first 1.5 MB are left out."_s));
    EXPECT_LE(text->document()->characterCount(), static_cast<int>(LogFollower::most));
}

TEST_F(LogPanelTest, CopiesTheSelectionOrEverything) {
    openLog("one\ntwo\n");
    ASSERT_TRUE(says(u"two\n"_s));
    button(u"Copy"_s)->click();
    EXPECT_EQ(QApplication::clipboard()->text(), u"one\ntwo\n"_s);
    text->find(u"two"_s, QTextDocument::FindBackward);
    text->moveCursor(QTextCursor::Start);
    text->find(u"two"_s);
    button(u"Copy"_s)->click();
    EXPECT_EQ(QApplication::clipboard()->text(), u"two"_s);
    add("three\n");
    EXPECT_TRUE(says(u"three\n"_s));
    EXPECT_EQ(text->textCursor().selectedText(), u"two"_s) << "the selection stays";
}

TEST_F(LogPanelTest, ShowsTheFileInTheFileManager) {
    openLog("x\n");
    button(u"Reveal in Finder"_s)->click();
    EXPECT_TRUE(eventually([&] { return !stubs.workspace->revealed.empty(); }));
    EXPECT_THAT(stubs.workspace->revealed, ElementsAre(log));
    fs::remove(log);
    button(u"Reveal in Finder"_s)->click();
    EXPECT_TRUE(eventually([&] { return shown(u"Something went wrong"_s); }));
}

TEST_F(LogPanelTest, TabGoesThroughItsControls) {
    openLog("x\n");
    EXPECT_EQ(text->accessibleName(), u"Log"_s);
    EXPECT_EQ(window->focusWidget(), text) << "where keys scroll";
    for (const QString& next : {u"Copy"_s, u"Reveal in Finder"_s, u"Close"_s}) {
        QTest::keyClick(window->focusWidget(), Qt::Key_Tab);
        EXPECT_EQ(window->focusWidget(), button(next)) << next.toStdString();
    }
}

} // namespace
} // namespace quorvel::testing
