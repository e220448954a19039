#include "WebHost/Pages/PageText.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

TEST(PageTextTest, LinesStayLines) {
    EXPECT_EQ(pageText("a\nb\r\n\n\tc\n", 100), "a\nb\n\n c\n");
    EXPECT_EQ(pageText("", 100), "");
}

TEST(PageTextTest, UnsafeCharactersAreRemoved) {
    EXPECT_EQ(pageText("a\u202eb\x1b[31m\nc\u2066d", 100), "ab[31m\ncd");
}

TEST(PageTextTest, AllLinesTogetherAreNoLongerThanTheLimit) {
    EXPECT_EQ(pageText("abc\ndefgh", 6), "abc\nde…");
    EXPECT_EQ(pageText("äöü\nä", 5), "äöü\nä");
    EXPECT_EQ(pageText(std::string(1000, '\n'), 5), "\n\n\n\n\n…");
}

} // namespace
} // namespace quorvel
