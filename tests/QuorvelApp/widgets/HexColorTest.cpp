#include "QuorvelApp/widgets/HexColor.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

TEST(HexColorTest, IsUpperCaseWithoutOpacity) {
    EXPECT_EQ(hexRGB(Qt::white), "#FFFFFF");
    EXPECT_EQ(hexRGB(QColor(10, 171, 205, 3)), "#0AABCD");
    EXPECT_EQ(hexRGB(QColor::fromHslF(0.0F, 1.0F, 0.5F)), "#FF0000");
    EXPECT_EQ(hexRGB(QColor()), "#FFFFFF") << "no color at all";
}

TEST(HexColorTest, RoundsToTheNearestStep) {
    EXPECT_EQ(hexRGB(QColor::fromRgbF(0.5F, 0.0019F, 0.0021F)), "#800001");
}

TEST(HexColorTest, StaysInRangeForColorsBeyondSRGB) {
    EXPECT_EQ(hexRGB(QColor::fromRgbF(1.7F, -0.4F, 0.0F)), "#FF0000");
}

} // namespace
} // namespace quorvel
