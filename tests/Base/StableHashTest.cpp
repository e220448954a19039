#include "Base/StableHash.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

TEST(StableHashTest, IsThatOfItsPublishedTestVectors) {
    EXPECT_EQ(stableHash(""), "cbf29ce484222325");
    EXPECT_EQ(stableHash("a"), "af63dc4c8601ec8c");
    EXPECT_EQ(stableHash("foobar"), "85944171f73967e8");
}

TEST(StableHashTest, EveryByteCounts) {
    EXPECT_NE(stableHash(std::string_view("a\0b", 3)), stableHash("a"));
    EXPECT_NE(stableHash("\xFF"), stableHash("\x7F"));
}

} // namespace
} // namespace quorvel
