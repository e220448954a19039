#include "LaunchKit/Icons/GaussianBlur.h"

#include <gtest/gtest.h>

#include <cmath>

namespace quorvel::testing {
namespace {

// How much of a point at 0 reaches the pixel at `offset`.
double share(double offset, double deviation) {
    const double scale = deviation * std::sqrt(2);
    return (std::erf((offset + 0.5) / scale) - std::erf((offset - 0.5) / scale)) / 2;
}

QImage blackImage(int width, int height) {
    QImage image(width, height, QImage::Format_Alpha8);
    image.fill(0);
    return image;
}

// Expects that a point spreads to every pixel by the formula, also beside the image's edges.
void expectSpread(int width, int height, QPoint point, double deviation, double drop) {
    QImage image = blackImage(width, height);
    image.scanLine(point.y())[point.x()] = 255;
    const QImage blurred = gaussianBlurred(image, deviation, drop);
    ASSERT_EQ(blurred.size(), image.size());
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const double expected =
                255 * share(x - point.x(), deviation) * share(y - point.y() - drop, deviation);
            EXPECT_NEAR(blurred.constScanLine(y)[x], expected, 0.6)
                << "at " << x << ", " << y << " of a point at " << point.x() << ", " << point.y();
        }
    }
}

TEST(GaussianBlurTest, APointSpreadsInBothDirections) {
    expectSpread(21, 17, {10, 8}, 1.5, 0);
}

TEST(GaussianBlurTest, ADropMovesItDown) {
    expectSpread(21, 17, {10, 6}, 1.5, 2);
    expectSpread(21, 17, {10, 6}, 1.5, 2.5);
}

TEST(GaussianBlurTest, WhatLeavesTheImageIsLostAndNothingElse) {
    for (const QPoint corner : {QPoint(0, 0), QPoint(12, 0), QPoint(0, 8), QPoint(12, 8)}) {
        expectSpread(13, 9, corner, 1, 0);
        expectSpread(13, 9, corner, 1, 1.5);
    }
}

TEST(GaussianBlurTest, AFilledImageStaysFilledAwayFromItsEdges) {
    QImage image = blackImage(31, 23);
    image.fill(255);
    const QImage blurred = gaussianBlurred(image, 2, 0);
    for (int y = 6; y < 17; ++y) {
        for (int x = 6; x < 25; ++x) {
            EXPECT_EQ(blurred.constScanLine(y)[x], 255) << x << ", " << y;
        }
    }
    EXPECT_LT(blurred.constScanLine(0)[0], 100);
}

} // namespace
} // namespace quorvel::testing
