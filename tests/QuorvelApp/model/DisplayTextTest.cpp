#include "QuorvelApp/model/DisplayText.h"

#include <QTextDocumentFragment>

#include <gtest/gtest.h>

namespace quorvel {
namespace {

using namespace Qt::StringLiterals;

TEST(DisplayTextTest, LeavesMarkupAndOtherScriptsAsTheyAre) {
    for (const char* text : {"<img src=x><b>hi", "a & b &amp;", "工作 😀", "שלום", "%1 %2"}) {
        EXPECT_EQ(displayText(text), QString::fromUtf8(text));
        EXPECT_EQ(displayLine(text), QString::fromUtf8(text));
    }
}

TEST(DisplayTextTest, KeepsLineBreaksAndALineHasNone) {
    const std::string text = "a\nb\r\nc\rd\u2028e\u2029f\u0085g\vh\fi\tj";
    EXPECT_EQ(displayText(text), u"a\nb\nc\nd\ne\nf\ng\nh\ni j"_s);
    EXPECT_EQ(displayLine(text), u"a b c d e f g h i j"_s);
}

TEST(DisplayTextTest, ShowsWhatSteersOrTurnsTextAsAReplacement) {
    for (const std::string steering :
         {"\x1b", "\x07", "\x7f", "\u202e", "\u202a", "\u2066", "\u2069", "\u200f", "\u061c"}) {
        EXPECT_EQ(displayLine("a" + steering + "b"), u"a\uFFFDb"_s);
    }
    EXPECT_EQ(displayLine(std::string_view("a\0b", 3)), u"a\uFFFDb"_s);
    EXPECT_EQ(displayLine("a\xff"
                          "b"),
              u"a\uFFFDb"_s);
}

TEST(DisplayTextTest, ShowsWhatCantBeSeenUnlessItBelongsThere) {
    for (const std::string invisible : {"\u200b", "\u200d", "\u2060", "\u00ad", "\ufeff"}) {
        EXPECT_EQ(displayLine("Wo" + invisible + "rk"), u"Wo\uFFFDrk"_s);
    }
    EXPECT_EQ(displayLine("👨\u200d👩 می\u200cخواهم ❤\ufe0f"), u"👨\u200d👩 می\u200cخواهم ❤\ufe0f"_s);
}

TEST(DisplayTextTest, IsCutAfterItsLongestLength) {
    const std::string megabyte(1 << 20, 'W');
    EXPECT_EQ(displayLine(megabyte), QString(longestDisplayLine, u'W') + u'…');
    EXPECT_EQ(displayText(megabyte), QString(longestDisplayText, u'W') + u'…');
    const std::string fits(longestDisplayLine, 'W');
    EXPECT_EQ(displayLine(fits), QString(longestDisplayLine, u'W'));
    EXPECT_EQ(displayLine(fits + "W"), QString(longestDisplayLine, u'W') + u'…');
    const std::string invalid(1 << 20, '\xff');
    EXPECT_EQ(displayLine(invalid),
              QString(longestDisplayLine, QChar::ReplacementCharacter) + u'…');
}

TEST(DisplayTextTest, IsCutBetweenWholeCharacters) {
    const std::string almost(longestDisplayLine - 1, 'W');
    const QString before = QString(longestDisplayLine - 1, u'W');
    EXPECT_EQ(displayLine(almost + "e"), before + u'e');
    for (const std::string character : {"😀", "e\u0301", "👨\u200d👩"}) {
        EXPECT_EQ(displayLine(almost + character + "WW"), before + u'…') << character;
    }
    std::string endless = "e";
    for (int mark = 0; mark < 100000; ++mark) {
        endless += "\u0301";
    }
    EXPECT_EQ(displayLine(endless).size(), longestDisplayLine + 1) << "a single endless character";
    std::string wide;
    for (int count = 0; count < 100000; ++count) {
        wide += "工";
    }
    EXPECT_EQ(displayLine(wide), QString(longestDisplayLine, u'工') + u'…');
}

TEST(DisplayTextTest, BreakableMarksPathsAfterTheirSeparators) {
    EXPECT_EQ(breakable(u"/a/b-c"_s), u"/\u200Ba/\u200Bb-\u200Bc"_s);
    EXPECT_EQ(breakable(u"two words"_s), u"two words"_s);
}

TEST(DisplayTextTest, BreakableMarksLongWordsBetweenTheirCharacters) {
    const QString longWord(100, u'x');
    QString marked = breakable(u"short "_s + longWord);
    EXPECT_TRUE(marked.startsWith(u"short x\u200Bx"_s));
    EXPECT_EQ(marked.remove(breakMark), u"short "_s + longWord);
    const QString family = u"👨‍👩‍👧‍👦"_s;
    EXPECT_EQ(breakable(family.repeated(4)), (family + breakMark).repeated(4));
}

TEST(DisplayTextTest, ToolTipTextIsMarkupThatReadsAsTheTextItself) {
    for (const QString& text : {u"Tom & Jerry"_s, u"<img src=x><b>hi"_s, u"a\nb"_s, u"&amp;"_s}) {
        EXPECT_TRUE(Qt::mightBeRichText(toolTipText(text)));
        EXPECT_EQ(QTextDocumentFragment::fromHtml(toolTipText(text)).toPlainText(), text);
    }
    EXPECT_TRUE(toolTipText({}).isEmpty()) << "no text, no tooltip";
}

} // namespace
} // namespace quorvel
