#include "WebHost/Downloads/DownloadTexts.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

TEST(DownloadTextsTest, OneIsNamedAndSeveralAreCounted) {
    EXPECT_EQ((DownloadProgress{.count = 1, .sum = 0.346, .name = "a.zip"}.text()),
              "Downloading “a.zip”: 34 %");
    const DownloadProgress both{.count = 2, .sum = 1.5, .name = "b"};
    EXPECT_EQ(both.text(), "Downloading 2 files: 75 %");
    EXPECT_EQ(both.percent(), 75);
    EXPECT_EQ(DownloadProgress().percent(), 0);
}

TEST(DownloadTextsTest, TheEndsNameTheFile) {
    EXPECT_EQ(savedText("/home/me/Downloads/a (1).zip"), "Saved “a (1).zip” in “Downloads”");
    EXPECT_EQ(failedText("a", "no space left"), "“a” can’t be downloaded: no space left");
}

} // namespace
} // namespace quorvel
