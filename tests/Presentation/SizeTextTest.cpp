#include "Presentation/SizeText.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

TEST(SizeTextTest, SizesAreRoundedDownInTheLargestUnitThatFits) {
    EXPECT_EQ(sizeText(0), "0 bytes");
    EXPECT_EQ(sizeText(1), "1 byte");
    EXPECT_EQ(sizeText(999), "999 bytes");
    EXPECT_EQ(sizeText(1'000), "1.0 kB");
    EXPECT_EQ(sizeText(999'999), "999.9 kB");
    EXPECT_EQ(sizeText(1'000'000), "1.0 MB");
    EXPECT_EQ(sizeText(300'123'456), "300.1 MB");
    EXPECT_EQ(sizeText(2'500'000'000), "2.5 GB");
    EXPECT_EQ(sizeText(5'000'000'000'000'000), "5000.0 TB");
}

} // namespace
} // namespace quorvel
