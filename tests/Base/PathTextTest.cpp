#include "Base/PathText.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

TEST(PathTextTest, JoiningAsTextNeverDropsTheBase) {
    EXPECT_EQ(joinAsText("/a"s, "b"), "/a/b");
    EXPECT_EQ(joinAsText("/a"s, "/etc/passwd"), "/a//etc/passwd");
    EXPECT_EQ(joinAsText("/a"s, ""), "/a/");
    EXPECT_EQ(joinAsText(""s, "b"), "/b");
    EXPECT_EQ(joinAsText(fs::path("/a/"), "/b").native(), "/a///b");
}

TEST(PathTextTest, TrailingSlashesAreRemoved) {
    EXPECT_EQ(withoutTrailingSlashes("/a/b//"s), "/a/b");
    EXPECT_EQ(withoutTrailingSlashes("a b"s), "a b");
    EXPECT_EQ(withoutTrailingSlashes("/"s), "/");
    EXPECT_EQ(withoutTrailingSlashes("///"s), "/");
    EXPECT_EQ(withoutTrailingSlashes(""s), "");
    EXPECT_EQ(withoutTrailingSlashes(fs::path("/a//b/")).native(), "/a//b");
}

TEST(PathTextTest, TheLastComponentIgnoresTrailingSlashes) {
    EXPECT_EQ(lastPathComponent("/a/b"), "b");
    EXPECT_EQ(lastPathComponent("/a/b.app//"), "b.app");
    EXPECT_EQ(lastPathComponent("b"), "b");
    EXPECT_EQ(lastPathComponent("/a/.."), "..");
    EXPECT_EQ(lastPathComponent("//"), "/");
    EXPECT_EQ(lastPathComponent(""), "");
}

TEST(PathTextTest, AFolderWhoseNameOnlyBeginsTheSameIsNotBelow) {
    EXPECT_TRUE(isAtOrBelow("/a/b", "/a/b"));
    EXPECT_TRUE(isAtOrBelow("/a/b/c", "/a/b"));
    EXPECT_FALSE(isAtOrBelow("/a/bc", "/a/b"));
    EXPECT_FALSE(isAtOrBelow("/a", "/a/b"));
    EXPECT_EQ(withoutFoldersBelow("/a/b:/usr/bin:/a/b/c:/a/bc", "/a/b"), "/usr/bin:/a/bc");
    EXPECT_EQ(withoutFoldersBelow("/a/b", "/a/b"), "");
}

TEST(PathTextTest, ANulIsFoundAnywhere) {
    EXPECT_TRUE(hasNul("\0a"s));
    EXPECT_TRUE(hasNul("a\0"s));
    EXPECT_TRUE(hasNul(fs::path("/a\0b"s)));
    EXPECT_FALSE(hasNul("/a\\0b"s));
    EXPECT_FALSE(hasNul(""s));
}

} // namespace
} // namespace quorvel
