#include "LaunchKit/Icons/LabelText.h"

#include "LaunchKit/Icons/FontEngine.h"

#include <QChar>
#include <QFont>
#include <QFontInfo>
#include <QFontMetrics>
#include <QRawFont>
#include <QTextLayout>
#include <QTransform>

#include <gtest/gtest.h>

namespace quorvel::testing {
namespace {

class LabelTextTest : public ::testing::Test {
protected:
    LabelTextTest() { ensureFontEngine(); }

    // Whether some installed font has an outline for every character of the text.
    static bool canDraw(const QString& text) {
        QTextLayout layout(text, QFont(QStringLiteral("Helvetica")));
        layout.beginLayout();
        layout.createLine();
        layout.endLayout();
        for (const QGlyphRun& run : layout.glyphRuns()) {
            if (run.glyphIndexes().contains(0)) {
                return false;
            }
        }
        return true;
    }
};

TEST_F(LabelTextTest, IsDrawnInCapitals) {
    EXPECT_EQ(labelText("work").outlines, labelText("WORK").outlines);
    EXPECT_EQ(labelText("straße").outlines, labelText("STRASSE").outlines);
    EXPECT_NE(labelText("WORK").outlines, labelText("WORD").outlines);
}

TEST_F(LabelTextTest, HasABoldSansSerifFace) {
    const QFontInfo used{[] {
        QFont font(QStringLiteral("Helvetica"));
        font.setBold(true);
        return font;
    }()};
    if (!used.family().startsWith(QStringLiteral("Nimbus Sans"))) {
        GTEST_SKIP() << "measured with Nimbus Sans, here is " << used.family().toStdString();
    }
    const LabelText stem = labelText("I");
    // Helvetica Bold: capitals are 0.718 of the size high, its stem 0.14 to 0.16 wide.
    EXPECT_NEAR(stem.box.height() / stem.fontSize, 0.72, 0.015);
    EXPECT_NEAR(stem.box.width() / stem.fontSize, 0.15, 0.02);
}

TEST_F(LabelTextTest, RestsOnTheBaseline) {
    const LabelText text = labelText("H");
    EXPECT_NEAR(text.box.bottom(), 0, 0.5);
    EXPECT_LT(text.box.top(), -0.6 * text.fontSize);
    EXPECT_GT(labelText("Q,").box.bottom(), 1);
}

TEST_F(LabelTextTest, HasABoxExactlyAroundItsOutlines) {
    // The braces' curves have handles that reach beyond them.
    for (const char* word : {"S", "Q,", "ÅÇ", "&@%", "}", "{"}) {
        const LabelText text = labelText(word);
        // Straight pieces so short that no curve reaches a thousandth of a pixel beyond them.
        QRectF exact;
        for (const QPolygonF& polygon :
             text.outlines.toSubpathPolygons(QTransform::fromScale(16, 16))) {
            exact = exact.united(polygon.boundingRect());
        }
        EXPECT_NEAR(text.box.left(), exact.left() / 16, 0.05) << word;
        EXPECT_NEAR(text.box.right(), exact.right() / 16, 0.05) << word;
        EXPECT_NEAR(text.box.top(), exact.top() / 16, 0.05) << word;
        EXPECT_NEAR(text.box.bottom(), exact.bottom() / 16, 0.05) << word;
    }
}

TEST_F(LabelTextTest, IsFilledWhereItsOutlinesOverlap) {
    EXPECT_EQ(labelText("A").outlines.fillRule(), Qt::WindingFill);
    EXPECT_EQ(labelText("").outlines.fillRule(), Qt::WindingFill);
}

TEST_F(LabelTextTest, HasNoOutlinesForSpacesAndNothing) {
    for (const char* text : {"", " ", "\t", "   ", "\n", "\r\n"}) {
        EXPECT_TRUE(labelText(text).outlines.isEmpty());
        EXPECT_TRUE(labelText(text).box.isNull());
    }
}

TEST_F(LabelTextTest, KeepsTheWidthOfASpaceBetweenWords) {
    EXPECT_GT(labelText("A B").box.width(), labelText("AB").box.width() + 20);
    EXPECT_EQ(labelText(" A ").box.width(), labelText("A").box.width());
}

TEST_F(LabelTextTest, StaysOnOneLine) {
    const double height = labelText("AB").box.height();
    for (const char* text : {"A\nB", "A\r\nB", "A\u2028B", "A\u2029B", "A\vB", "A\fB"}) {
        EXPECT_NEAR(labelText(text).box.height(), height, height / 4) << text;
        EXPECT_GT(labelText(text).box.width(), labelText("A").box.width()) << text;
    }
}

TEST_F(LabelTextTest, KernsAsTheFontSays) {
    // Two letters with parallel slopes are closer than their own widths.
    const auto width = [](const char* text) { return labelText(text).box.width(); };
    EXPECT_LT(width("AVAVAV"), 3 * (width("A") + width("V")));
}

TEST_F(LabelTextTest, TakesAnyBytes) {
    EXPECT_NO_THROW((void)labelText("\xFF\xFE\x80"));
    EXPECT_NO_THROW((void)labelText(std::string("A\0B", 3)));
    EXPECT_NO_THROW((void)labelText(std::string(2000, 'W')));
    EXPECT_NO_THROW((void)labelText("e\u0301\u200D\u202E\U0001F469\u200D\U0001F680"));
}

struct Script {
    const char* name;
    const char* text;
};
class LabelTextTestScripts : public LabelTextTest, public ::testing::WithParamInterface<Script> {};
INSTANTIATE_TEST_SUITE_P(LabelTextTest, LabelTextTestScripts,
                         ::testing::Values(Script{"Greek", "ΔΟΚΙΜΗ"}, Script{"Cyrillic", "РАБОТА"},
                                           Script{"Arabic", "المنزل"}, Script{"Hebrew", "בית"},
                                           Script{"Chinese", "工作"}, Script{"Emoji", "🚀"}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_P(LabelTextTestScripts, IsDrawnWhereSomeFontHasIt) {
    if (!canDraw(QString::fromUtf8(GetParam().text))) {
        GTEST_SKIP() << "no installed font has " << GetParam().text;
    }
    const LabelText text = labelText(GetParam().text);
    if (text.outlines.isEmpty() && std::string_view(GetParam().name) == "Emoji") {
        // Only pictures are installed, which have no outline to be drawn.
        EXPECT_TRUE(text.box.isEmpty());
        return;
    }
    EXPECT_GT(text.box.width(), 0.3 * text.fontSize);
    EXPECT_GT(text.box.height(), 0.3 * text.fontSize);
}

TEST_F(LabelTextTest, JoinsArabicLetters) {
    if (!canDraw(QString::fromUtf8("بيت"))) {
        GTEST_SKIP() << "no installed font has Arabic letters";
    }
    // Isolated letters are wider than the joined word.
    EXPECT_LT(labelText("بيت").box.width(), labelText("ب\u200Cي\u200Cت").box.width());
}

TEST_F(LabelTextTest, LaysOutRightToLeft) {
    if (!canDraw(QString::fromUtf8("א,"))) {
        GTEST_SKIP() << "no installed font has Hebrew letters";
    }
    // The comma that follows is to the left, below the baseline.
    const LabelText text = labelText("אאא,");
    const QRectF left = text.box.adjusted(0, 0, -text.box.width() * 0.8, 0);
    bool descends = false;
    for (int index = 0; index < text.outlines.elementCount(); ++index) {
        const QPointF point = text.outlines.elementAt(index);
        descends = descends || (left.contains(point) && point.y() > 0.05 * text.fontSize);
    }
    EXPECT_TRUE(descends);
}

TEST_F(LabelTextTest, LabelColorIsReadFromSixDigits) {
    const QColor orange(0xFF, 0x88, 0x00);
    for (const char* text : {"#FF8800", "ff8800", " #ff8800 ", "\tFf8800\t", "\u00A0#FF8800"}) {
        EXPECT_EQ(labelColor(text), orange) << text;
    }
    EXPECT_EQ(labelColor("#00ff00"), QColor(Qt::green));
    EXPECT_EQ(labelColor("00FF00"), QColor(Qt::green));
    EXPECT_EQ(labelColor("#000000"), QColor(Qt::black));
    EXPECT_EQ(labelColor("#FF8800").alpha(), 255);
}

TEST_F(LabelTextTest, LabelColorMayHaveASignInPlaceOfADigit) {
    EXPECT_EQ(labelColor("+0FF00"), QColor(0x00, 0xFF, 0x00));
    EXPECT_EQ(labelColor("-00001"), QColor(0xFF, 0xFF, 0xFF));
    EXPECT_EQ(labelColor("-00100"), QColor(0xFF, 0xFF, 0x00));
}

TEST_F(LabelTextTest, LabelColorIsWhiteForEveryOtherText) {
    for (const char* text :
         {"", "#", "#F80", "red", "#GG0000", "##FF880", "# FF8800", "#FF8800FF", "FF880", "0x8800",
          "FF 800", "+-0000", "--0000", "#FF8800\n", "\nFF8800", "ÄÄÄ", "ＦＦ", "12345\xFF"}) {
        EXPECT_EQ(labelColor(text), QColor(Qt::white)) << text;
    }
    EXPECT_EQ(labelColor(std::string("FF88\0\0", 6)), QColor(Qt::white));
}

} // namespace
} // namespace quorvel::testing
