#include "LaunchKit/IconComposer.h"
#include "LaunchKit/Icons/FontEngine.h"
#include "LaunchKit/Icons/IcnsFile.h"
#include "LaunchKit/Icons/LabelPainter.h"
#include "LaunchKit/Icons/LabelText.h"
#include "tests/support/TemporaryHome.h"

#include <QImage>

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

// Measures what was drawn, in the pixels of the written file.

namespace quorvel::testing {
namespace {

using Position = IconLabel::Position;

class DrawnIcon {
public:
    // The icon of that side, drawn from a source that is wholly transparent.
    DrawnIcon(const IconLabel& label, int side) {
        const TemporaryFolder folder;
        QImage clear(1024, 1024, QImage::Format_ARGB32);
        clear.fill(Qt::transparent);
        clear.save(QString::fromStdString((folder / "clear.png").string()));
        IconComposer::compose(folder / "clear.png", label, folder / "drawn.icns");
        const auto file = IcnsFile::read(folder / "drawn.icns");
        image_ = file ? file->nearest(side) : QImage();
    }

    [[nodiscard]] const QImage& image() const { return image_; }

    // The box of the pixels that the fill covers by more than half. The fill is red.
    [[nodiscard]] QRect fill() const {
        return boxOf([](QRgb pixel) { return qRed(pixel) * qAlpha(pixel) > 127 * 255; });
    }
    // The box of fill and outline; the shadow never reaches half.
    [[nodiscard]] QRect lettering() const {
        return boxOf([](QRgb pixel) { return qAlpha(pixel) > 127; });
    }

private:
    template<typename Belongs>
    [[nodiscard]] QRect boxOf(Belongs belongs) const {
        QRect box;
        for (int y = 0; y < image_.height(); ++y) {
            for (int x = 0; x < image_.width(); ++x) {
                if (belongs(image_.pixel(x, y))) {
                    box = box.united(QRect(x, y, 1, 1));
                }
            }
        }
        return box;
    }

    QImage image_;
};

double right(const QRect& box) {
    return box.x() + box.width();
}
double bottom(const QRect& box) {
    return box.y() + box.height();
}

class IconGeometryTestPlacements : public ::testing::TestWithParam<std::tuple<int, Position>> {
protected:
    const int size_ = std::get<0>(GetParam());
    const double side_ = size_;
    const Position position_ = std::get<1>(GetParam());

    IconGeometryTestPlacements() { ensureFontEngine(); }

    // Where the glyphs belong when they are so large.
    [[nodiscard]] QRectF glyphs(double width, double height) const {
        const double left = 0.5 * side_ - width / 2;
        switch (position_) {
        case Position::bottom:
            return {left, 0.92 * side_ - height, width, height};
        case Position::center:
            return {left, 0.5 * side_ - height / 2, width, height};
        case Position::top:
            break;
        }
        return {left, 0.08 * side_, width, height};
    }

    void expectDrawn(const std::string& text, double width, double height, double font) const {
        const DrawnIcon icon({text, "#FF0000", position_}, size_);
        ASSERT_EQ(icon.image().width(), size_);
        // Where strokes are thinner than pixels, only the outline around all can be measured.
        const bool small = size_ < 128;
        const double reach = small ? 0.18 * font / 2 : 0;
        const QRect box = small ? icon.lettering() : icon.fill();
        const QRectF expected = glyphs(width, height).adjusted(-reach, -reach, reach, reach);
        EXPECT_NEAR(box.x(), expected.left(), 1);
        EXPECT_NEAR(right(box), expected.right(), 1);
        EXPECT_NEAR(box.y(), expected.top(), 1);
        EXPECT_NEAR(bottom(box), expected.bottom(), 1);
    }
};

INSTANTIATE_TEST_SUITE_P(Icon, IconGeometryTestPlacements,
                         ::testing::Combine(::testing::Values(1024, 512, 256, 128, 64, 32, 16),
                                            ::testing::Values(Position::bottom, Position::center,
                                                              Position::top)),
                         [](const auto& row) {
                             return std::string(rawString(std::get<1>(row.param))) + "_" +
                                    std::to_string(std::get<0>(row.param));
                         });

TEST_P(IconGeometryTestPlacements, KeepsAShortLabelAtItsFontSize) {
    const LabelText text = labelText("EH");
    const double font = 0.24 * side_;
    const double scale = font / text.fontSize;
    expectDrawn("eh", text.box.width() * scale, text.box.height() * scale, font);
}

TEST_P(IconGeometryTestPlacements, ShrinksALongLabelToItsWidth) {
    const LabelText text = labelText("HHHHHHH");
    const double scale = 0.86 * side_ / text.box.width();
    expectDrawn("HHHHHHH", 0.86 * side_, text.box.height() * scale, text.fontSize * scale);
}

TEST(IconGeometryTest, SurroundsTheFillWithHalfAStroke) {
    const DrawnIcon icon({"H", "#FF0000", Position::center}, 1024);
    const QRect fill = icon.fill();
    const QRect all = icon.lettering();
    const double reach = 0.18 * 0.24 * 1024 / 2;
    EXPECT_NEAR(fill.x() - all.x(), reach, 1);
    EXPECT_NEAR(right(all) - right(fill), reach, 1);
    EXPECT_NEAR(fill.y() - all.y(), reach, 1);
    EXPECT_NEAR(bottom(all) - bottom(fill), reach, 1);
}

TEST(IconGeometryTest, RoundsTheOutlinesCorners) {
    const DrawnIcon icon({"I", "#FF0000", Position::center}, 1024);
    const QRect all = icon.lettering();
    const double radius = 0.18 * 0.24 * 1024 / 2;
    // On the diagonal a round corner starts this far inside of a pointed one.
    const int inset = static_cast<int>(radius * (1 - std::sqrt(0.5)));
    EXPECT_LT(qAlpha(icon.image().pixel(all.topLeft() + QPoint(inset - 2, inset - 2))), 127);
    EXPECT_GT(qAlpha(icon.image().pixel(all.topLeft() + QPoint(inset + 2, inset + 2))), 127);
}

TEST(IconGeometryTest, FillsWithTheColorAndOutlinesInDarkness) {
    const DrawnIcon icon({"I", "#12AB78", Position::center}, 1024);
    EXPECT_EQ(icon.image().pixel(512, 512), qRgb(0x12, 0xAB, 0x78));
    const LabelText text = labelText("I");
    const double edge = 512 + text.box.width() * 0.24 * 1024 / text.fontSize / 2;
    const QRgb outline = icon.image().pixel(static_cast<int>(edge) + 6, 512);
    EXPECT_EQ(outline & 0xFFFFFFU, 0U) << "black";
    // 0.9 over a shadow that is 0.45 where nothing thins it out.
    EXPECT_NEAR(qAlpha(outline), 255 * (1 - 0.1 * 0.55), 4);
}

TEST(IconGeometryTest, OutlinesAShrunkLabelInProportionToWhatItShrankTo) {
    ensureFontEngine();
    for (const int side : {1024, 512}) {
        const LabelText text = labelText("HHHHHHH");
        const double font = text.fontSize * 0.86 * side / text.box.width();
        ASSERT_LT(font, 0.2 * side) << "it has to be shrunk by more than the measure's error";
        const DrawnIcon icon({"HHHHHHH", "#FF0000", Position::center}, side);
        EXPECT_NEAR(icon.fill().x() - icon.lettering().x(), 0.18 * font / 2, 1) << side;
        EXPECT_NEAR(icon.fill().y() - icon.lettering().y(), 0.18 * font / 2, 1) << side;
    }
}

// The shadow's opacity under a wide stroke's straight lower edge, `distance` pixels below it.
double expectedShadow(double distance, int side) {
    const double deviation = 0.012 * side / 2;
    const double drop = 0.004 * side;
    return 255 * 0.45 * 0.5 * std::erfc((distance - drop) / deviation / std::sqrt(2.0));
}

// Compares the shadow above and below the letter at `x`.
void expectShadow(const DrawnIcon& icon, int x, const std::vector<int>& distances) {
    const int side = icon.image().width();
    const double lower = bottom(icon.lettering());
    const double upper = icon.lettering().y();
    for (const int distance : distances) {
        const auto below = static_cast<int>(lower) + distance;
        const auto above = static_cast<int>(upper) - 1 - distance;
        EXPECT_NEAR(qAlpha(icon.image().pixel(x, below)), expectedShadow(distance + 0.5, side), 6)
            << distance << " below, " << side;
        // Above, the shadow's edge is as far inside as it is outside below.
        EXPECT_NEAR(qAlpha(icon.image().pixel(x, above)),
                    expectedShadow(distance + 0.5 + 2 * 0.004 * side, side), 6)
            << distance << " above, " << side;
    }
    EXPECT_EQ(qAlpha(icon.image().pixel(x, static_cast<int>(lower) + side / 25)), 0) << side;
}

TEST(IconGeometryTest, DropsASoftShadow) {
    expectShadow(DrawnIcon({"I", "#FF0000", Position::center}, 1024), 512, {2, 4, 7, 10, 14, 18});
}

TEST(IconGeometryTest, DropsTheSameShadowFromAShrunkLabel) {
    const DrawnIcon icon({"HHHHHHH", "#FF0000", Position::center}, 1024);
    // The middle of the first letter's first leg.
    const int y = icon.fill().y() + 2;
    int x = icon.fill().x();
    while (qRed(icon.image().pixel(x, y)) > 127) {
        ++x;
    }
    expectShadow(icon, (icon.fill().x() + x) / 2, {2, 4, 7, 10, 14, 18});
}

TEST(IconGeometryTest, DropsAShadowInProportionToTheIcon) {
    expectShadow(DrawnIcon({"I", "#FF0000", Position::center}, 512), 256, {2, 4, 7});
}

TEST(IconGeometryTest, MirrorsTheShadowSideways) {
    const DrawnIcon icon({"I", "#FF0000", Position::center}, 1024);
    const QRect all = icon.lettering();
    for (const int distance : {2, 5, 10}) {
        EXPECT_NEAR(qAlpha(icon.image().pixel(all.x() - 1 - distance, 512)),
                    qAlpha(icon.image().pixel(static_cast<int>(right(all)) + distance, 512)), 8);
    }
}

TEST(IconGeometryTest, FillsWhereOutlinesOverlap) {
    ensureFontEngine();
    LabelText text = labelText("");
    text.fontSize = 256;
    text.outlines.addRect(0, -200, 150, 200);
    text.outlines.addRect(50, -150, 150, 150);
    text.box = text.outlines.boundingRect();
    QImage icon(512, 512, QImage::Format_ARGB32_Premultiplied);
    icon.fill(Qt::transparent);
    drawLabel(icon, text, Qt::red, Position::center);
    EXPECT_EQ(icon.pixel(256, 280), qRgb(255, 0, 0)) << "both rectangles cover the middle";
}

TEST(IconGeometryTest, CoversOverlappingOutlinesOnce) {
    // The strokes of neighboring letters meet; where they do, they are not darker.
    const DrawnIcon icon({"HHH", "#FF0000", Position::center}, 512);
    int darkest = 0;
    for (int x = 0; x < 512; ++x) {
        const QRgb pixel = icon.image().pixel(x, 256);
        darkest = qRed(pixel) == 0 ? std::max(darkest, qAlpha(pixel)) : darkest;
    }
    EXPECT_LE(darkest, 243);
    EXPECT_GE(darkest, 229);
}

} // namespace
} // namespace quorvel::testing
