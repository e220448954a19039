#include "Base/Text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quorvel {
namespace {

using namespace std::string_literals;
using ::testing::ElementsAre;

std::vector<std::string_view> sorted(const std::vector<std::string_view>& names) {
    std::vector<std::string_view> result;
    for (const std::size_t place : Text::sortedOrder(names, "")) {
        result.push_back(names.at(place));
    }
    return result;
}

TEST(TextTest, NamesAreOrderedIgnoringCase) {
    EXPECT_THAT(sorted({"Fred", "Beta", "", "Émile", "alpha"}),
                ElementsAre("", "alpha", "Beta", "Émile", "Fred"));
}

TEST(TextTest, NamesThatDifferOnlyInCaseKeepTheirOrder) {
    EXPECT_THAT(sorted({"b", "alpha", "Alpha", "ALPHA"}),
                ElementsAre("alpha", "Alpha", "ALPHA", "b"));
    EXPECT_THAT(sorted({"b", "ALPHA", "alpha", "Alpha"}),
                ElementsAre("ALPHA", "alpha", "Alpha", "b"));
    EXPECT_THAT(sorted({"école", "ÉCOLE"}), ElementsAre("école", "ÉCOLE"));
    EXPECT_THAT(sorted({"ÉCOLE", "école"}), ElementsAre("ÉCOLE", "école"));
}

TEST(TextTest, AccentsDistinguishNames) {
    EXPECT_THAT(sorted({"résumé", "resume"}), ElementsAre("resume", "résumé"));
    EXPECT_THAT(sorted({"resume", "résumé"}), ElementsAre("resume", "résumé"));
}

TEST(TextTest, VeryLongNamesAreComparedToTheirEnd) {
    const std::string name(20000, 'z');
    const std::string first = name + "a";
    const std::string second = name + "b";
    EXPECT_THAT(sorted({second, first, "工作"}), ElementsAre(first, second, "工作"));
}

TEST(TextTest, NoNamesHaveNoOrder) {
    EXPECT_TRUE(Text::sortedOrder({}, "").empty());
}

TEST(TextTest, ContainingIgnoresCase) {
    EXPECT_TRUE(Text::containsIgnoringCase("Straße", "STRASSE", ""));
    EXPECT_TRUE(Text::containsIgnoringCase("Ärger", "äR", ""));
    EXPECT_FALSE(Text::containsIgnoringCase("Mail", "male", ""));
}

TEST(TextTest, AnEmptyPartIsNeverContained) {
    EXPECT_FALSE(Text::containsIgnoringCase("Mail", "", ""));
    EXPECT_FALSE(Text::containsIgnoringCase("", "", ""));
}

TEST(TextTest, CaseMappingsAreFull) {
    EXPECT_EQ(Text::upperCased("Straße"), "STRASSE");
    EXPECT_EQ(Text::lowerCased("ÉCOLE"), "école");
    EXPECT_EQ(Text::lowerCased("TITLE"), "title");
}

TEST(TextTest, LettersMarksAndDigitsOfEveryScriptAreAlphanumeric) {
    EXPECT_EQ(Text::replacingNonAlphanumerics("Café 2", '-'), "Café-2");
    EXPECT_EQ(Text::replacingNonAlphanumerics("日本語٣", '-'), "日本語٣");
    EXPECT_EQ(Text::replacingNonAlphanumerics("e\u0301", '-'), "e\u0301");
}

TEST(TextTest, EveryOtherScalarIsReplacedByItself) {
    EXPECT_EQ(Text::replacingNonAlphanumerics("a  b!", '-'), "a--b-");
    EXPECT_EQ(Text::replacingNonAlphanumerics("😀", '-'), "-");
    EXPECT_EQ(Text::replacingNonAlphanumerics("a\0b"s, '-'), "a-b");
    EXPECT_EQ(Text::replacingNonAlphanumerics("a\xFF", '-'), "a-");
}

TEST(TextTest, TrimmingKeepsLineBreaksUnlessAsked) {
    EXPECT_EQ(Text::trimmingWhitespace(" \t a b \t"), "a b");
    EXPECT_EQ(Text::trimmingWhitespace("\n a"), "\n a");
    EXPECT_EQ(Text::trimmingWhitespaceAndNewlines("\r\n a \n"), "a");
}

TEST(TextTest, TrimmingRemovesTheSpacesOfEveryScript) {
    EXPECT_EQ(Text::trimmingWhitespace("\u00A0\u3000x\u2003"), "x");
    EXPECT_EQ(Text::trimmingWhitespaceAndNewlines("\u2028x\u2029\u0085"), "x");
}

TEST(TextTest, TrimmingOnlySpaceLeavesNothing) {
    EXPECT_EQ(Text::trimmingWhitespace("   "), "");
    EXPECT_EQ(Text::trimmingWhitespaceAndNewlines(" \n\t "), "");
    EXPECT_EQ(Text::trimmingWhitespace(""), "");
}

TEST(TextTest, TrimmingKeepsInvalidBytes) {
    EXPECT_EQ(Text::trimmingWhitespace(" \xFF\xFE "), "\xFF\xFE");
    EXPECT_EQ(Text::trimmingWhitespaceAndNewlines("\xC3 "), "\xC3");
}

TEST(TextTest, TheFirstCaptureIsThatOfTheFirstMatch) {
    EXPECT_EQ(Text::firstCapture("a(\\d+)", "a a12 a3"), "12");
    EXPECT_EQ(Text::firstCapture("a(\\d+)", "b"), std::nullopt);
}

TEST(TextTest, AGroupThatDidNotParticipateIsNotACapture) {
    EXPECT_EQ(Text::firstCapture("a(b)?", "ac"), std::nullopt);
}

TEST(TextTest, AnInvalidPatternIsRefused) {
    EXPECT_THROW((void)Text::firstCapture("(", "x"), std::invalid_argument);
}

} // namespace
} // namespace quorvel
