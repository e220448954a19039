#include "QuorvelApp/theme/Theme.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

namespace quorvel {
namespace {

using namespace Qt::StringLiterals;

TEST(ThemeTest, EveryNameInTheStyleSheetsIsThatOfAColor) {
    for (const Colors* colors : {&lightColors(), &darkColors()}) {
        const QString sheet = styleSheetFor(*colors, ControlLook::styled);
        EXPECT_TRUE(sheet.contains(colors->sidebar.name()));
        EXPECT_EQ(sheet.indexOf(u'@'), -1) << sheet.mid(sheet.indexOf(u'@'), 30).toStdString();
    }
}

TEST(ThemeTest, ANameMayBeginWithAnotherOne) {
    const QString sheet = styleSheetFor(lightColors(), ControlLook::styled);
    EXPECT_FALSE(sheet.contains(QRegularExpression(u"#[0-9a-f]{6}-"_s)));
    EXPECT_TRUE(sheet.contains(u"border: 1px solid "_s + lightColors().controlBorder.name()));
    EXPECT_TRUE(sheet.contains(u"pressed { background: "_s + lightColors().accentPressed.name()));
    EXPECT_TRUE(sheet.contains(u"background: "_s + lightColors().control.name()));
}

TEST(ThemeTest, LightAndDarkColorsAreToldApartByTheirPalettes) {
    EXPECT_EQ(&colorsFor(paletteFor(lightColors())), &lightColors());
    EXPECT_EQ(&colorsFor(paletteFor(darkColors())), &darkColors());
    EXPECT_EQ(darkColors().text, QColor(0xF2, 0xF2, 0xF4));
    EXPECT_EQ(lightColors().scrim, QColor(0, 0, 0, 80)) << "with its opacity";
}

} // namespace
} // namespace quorvel
