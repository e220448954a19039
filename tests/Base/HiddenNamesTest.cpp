#include "Base/HiddenNames.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

TEST(HiddenNamesTest, ANewNameIsRecognisedByItsPrefixOnly) {
    const std::string name = newHiddenName(movingPrefix);
    EXPECT_TRUE(isHiddenName(name, movingPrefix)) << name;
    EXPECT_FALSE(isHiddenName(name, movedPrefix));
    EXPECT_FALSE(isHiddenName(name, unfinishedPrefix)) << "it begins with that one too";
    EXPECT_NE(name, newHiddenName(movingPrefix));
}

TEST(HiddenNamesTest, NamesOfTheUsersAreNot) {
    EXPECT_FALSE(isHiddenName(".quorvel-moving-van", movingPrefix));
    EXPECT_FALSE(isHiddenName(newHiddenName(movingPrefix) + "x", movingPrefix));
    EXPECT_FALSE(isHiddenName("a" + newHiddenName(movingPrefix), movingPrefix));
    EXPECT_FALSE(isHiddenName("", unfinishedPrefix));
}

} // namespace
} // namespace quorvel
