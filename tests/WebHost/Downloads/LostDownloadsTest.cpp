#include "WebHost/Downloads/LostDownloads.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

TEST(LostDownloadsTest, RefusalsAreCountedAndNamed) {
    LostDownloads lost;
    EXPECT_EQ(lost.appendedTo(""), "");
    EXPECT_EQ(lost.appendedTo("Saved “a”"), "Saved “a”");
    lost.refuse("b.txt");
    EXPECT_EQ(lost.appendedTo(""), "“b.txt” was not downloaded: too many at once");
    EXPECT_EQ(lost.appendedTo("Saved “a”"),
              "Saved “a”; “b.txt” was not downloaded: too many at once");
    lost.refuse("c.txt");
    EXPECT_EQ(lost.appendedTo(""), "2 files were not downloaded: too many at once");
    lost.reset();
    EXPECT_EQ(lost.appendedTo("Saved “a”"), "Saved “a”");
    lost.refuse("d.txt");
    EXPECT_EQ(lost.appendedTo(""), "“d.txt” was not downloaded: too many at once");
}

TEST(LostDownloadsTest, AFailureStaysWhileOthersRun) {
    LostDownloads lost;
    lost.fail("“a” can’t be downloaded: gone");
    EXPECT_EQ(lost.appendedTo("Downloading “b”: 3 %"),
              "Downloading “b”: 3 %; “a” can’t be downloaded: gone");
    lost.fail("“c” can’t be downloaded: full");
    EXPECT_EQ(lost.appendedTo(""), "2 downloads failed, the last: “c” can’t be downloaded: full");
    lost.refuse("d");
    EXPECT_EQ(lost.appendedTo("Saved “b”"),
              "Saved “b”; 2 downloads failed, the last: “c” can’t be downloaded: full; “d” was not "
              "downloaded: too many at once");
    lost.reset();
    EXPECT_EQ(lost.appendedTo(""), "");
}

} // namespace
} // namespace quorvel
