#include "QuorvelApp/widgets/CopyableLabel.h"
#include "QuorvelApp/Components.h"

#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QTest>
#include <QTextDocumentFragment>

#include <gtest/gtest.h>

namespace quorvel {
namespace {

using namespace Qt::StringLiterals;

QString copied(CopyableLabel& label) {
    QApplication::clipboard()->clear();
    label.setSelection(0, static_cast<int>(label.text().size()));
    QTest::keyClick(&label, Qt::Key_C, Qt::ControlModifier);
    return QApplication::clipboard()->text();
}

TEST(CopyableLabelTest, CopiesAPathAsItIsHoweverItIsWrapped) {
    WrappingText label(TextStyle::body);
    const QString path = u"/Users/u/Applications/"_s + QString(200, u'x') + u".app"_s;
    label.setFullText(path);
    label.resize(200, label.heightForWidth(200));
    EXPECT_GT(label.heightForWidth(200), 4 * label.fontMetrics().height()) << "it is wrapped";
    EXPECT_EQ(copied(label), path);
    EXPECT_EQ(label.accessibleName(), path);
}

TEST(CopyableLabelTest, CopiesTheWholeOfWhatItHadToElide) {
    ElidedLabel label(TextStyle::body, Ink::text);
    const QString name(100, u'x');
    label.setFullText(name);
    label.show();
    label.resize(100, 20);
    EXPECT_NE(label.text(), name);
    EXPECT_EQ(copied(label), name);
    EXPECT_EQ(QTextDocumentFragment::fromHtml(label.toolTip()).toPlainText(), name);
    label.resize(label.sizeHint());
    EXPECT_EQ(label.text(), name);
    EXPECT_EQ(label.toolTip(), QString()) << "nothing is hidden any more";
    EXPECT_EQ(copied(label), name);
}

TEST(CopyableLabelTest, CopiesAPartWhereAPartIsSelected) {
    ElidedLabel label(TextStyle::body, Ink::text);
    label.setFullText(u"Work and play"_s);
    label.resize(label.sizeHint());
    label.setSelection(0, 4);
    EXPECT_EQ(label.selectionToCopy(), u"Work"_s);
}

TEST(CopyableLabelTest, ItsMenuCopiesAndSelects) {
    WrappingText label(TextStyle::body);
    label.setFullText(u"/a/b"_s);
    label.show();
    QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(1, 1), label.mapToGlobal(QPoint()));
    QApplication::sendEvent(&label, &event);
    auto* menu = label.findChild<QMenu*>();
    ASSERT_NE(menu, nullptr);
    ASSERT_EQ(menu->actions().size(), 2);
    EXPECT_FALSE(menu->actions().at(0)->isEnabled()) << "nothing is selected yet";
    menu->actions().at(1)->trigger();
    EXPECT_EQ(label.selectionToCopy(), u"/a/b"_s);
    menu->close();
}

TEST(CopyableLabelTest, KeepsTheSelectionWhenTheSameTextIsSetAgain) {
    WrappingText label(TextStyle::body);
    label.setFullText(u"some text"_s);
    label.setSelection(0, 4);
    label.setFullText(u"some text"_s);
    EXPECT_TRUE(label.hasSelectedText());
}

TEST(CopyableLabelTest, InfoRowTakesTheWidthThatIsThere) {
    InfoRow row({.label = "Location", .lines = {std::string(300, 'x')}, .monospaced = true});
    row.resize(400, 100);
    EXPECT_LE(row.minimumSizeHint().width(), 200);
    EXPECT_EQ(row.value(), QString(300, u'x'));
    EXPECT_EQ(InfoRow::labelWidth, 92);
}

} // namespace
} // namespace quorvel
