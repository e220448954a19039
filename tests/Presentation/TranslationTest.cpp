#include "Presentation/Translation.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

TEST(TranslationTest, EnglishIsTheTextItself) {
    EXPECT_EQ(inEnglish("Any", "100 %1"), "100 %1");
}

TEST(TranslationTest, ArgumentsGoToTheirNumbersInAnyOrder) {
    EXPECT_EQ(filledIn("%2 from %1, %2", {"a", "b"}), "b from a, b");
}

TEST(TranslationTest, AnArgumentIsNeverTakenForAPlace) {
    EXPECT_EQ(filledIn("“%1” and %2", {"%2", "%1"}), "“%2” and %1");
}

TEST(TranslationTest, APlaceWithoutAnArgumentStays) {
    EXPECT_EQ(filledIn("%1 %2 %0 %", {"a"}), "a %2 %0 %");
    EXPECT_EQ(filledIn("", {"a"}), "");
}

} // namespace
} // namespace quorvel
