#include "Presentation/SafeLog.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

TEST(SafeLogTest, KeepsLinesAndTabsAndEscapesWhatIsUnsafe) {
    SafeLog safe;
    EXPECT_EQ(safe("a\tb\nc\x1b[0m\r\n"), "a\tb\nc\\u{1b}[0m\\u{d}\n");
    EXPECT_EQ(safe("\xff\xe2\x80\xae"), "\\xff\\u{202e}");
    EXPECT_EQ(safe(std::string(10000, 'x')), std::string(10000, 'x')) << "nothing is cut";
}

TEST(SafeLogTest, ACharacterMayComeInPieces) {
    const std::string text = "ü€😀";
    for (std::size_t first = 0; first <= text.size(); ++first) {
        SafeLog safe;
        const std::string begin = safe(text.substr(0, first));
        EXPECT_EQ(begin + safe(text.substr(first)), text) << first;
    }
    SafeLog broken;
    EXPECT_EQ(broken("\xf0\x9f"), "");
    EXPECT_EQ(broken("x"), "\\xf0\\x9fx");
}

} // namespace
} // namespace quorvel
