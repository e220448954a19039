#include "WebHost/Downloads/RefusedDownloads.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

TEST(RefusedDownloadsTest, TheyAreCountedAndNamed) {
    RefusedDownloads refused;
    EXPECT_EQ(refused.appendedTo(""), "");
    EXPECT_EQ(refused.appendedTo("Saved “a”"), "Saved “a”");
    refused.add("b.txt");
    EXPECT_EQ(refused.appendedTo(""), "“b.txt” was not downloaded: too many at once");
    EXPECT_EQ(refused.appendedTo("Saved “a”"),
              "Saved “a”; “b.txt” was not downloaded: too many at once");
    refused.add("c.txt");
    EXPECT_EQ(refused.appendedTo(""), "2 files were not downloaded: too many at once");
    refused.reset();
    EXPECT_EQ(refused.appendedTo("Saved “a”"), "Saved “a”");
    refused.add("d.txt");
    EXPECT_EQ(refused.appendedTo(""), "“d.txt” was not downloaded: too many at once");
}

} // namespace
} // namespace quorvel
