#include "LaunchKit/WebBadge.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

std::int64_t count(std::string_view title) {
    return WebBadgeState::unreadCount(title);
}

TEST(WebBadgeTest, ATitlesNumberInBracketsIsTheCount) {
    EXPECT_EQ(count("(3) Inbox"), 3);
    EXPECT_EQ(count("Inbox [12]"), 12);
    EXPECT_EQ(count("Inbox (99+)"), 99);
    EXPECT_EQ(count("( 7 ) Chat"), 7);
    EXPECT_EQ(count("[\t5 + ]"), 0) << "a blank before the plus sign is not expected";
    EXPECT_EQ(count("[ 5+ ]"), 5);
}

TEST(WebBadgeTest, ATitleWithoutSuchANumberCountsNothing) {
    EXPECT_EQ(count("Inbox"), 0);
    EXPECT_EQ(count("(abc)"), 0);
    EXPECT_EQ(count("()"), 0);
    EXPECT_EQ(count("(3"), 0);
    EXPECT_EQ(count("(-3)"), 0);
    EXPECT_EQ(count("(3]"), 0);
    EXPECT_EQ(count(""), 0);
    EXPECT_EQ(count("\xFF\xFE"), 0);
}

TEST(WebBadgeTest, OnlyTheFirstOfEachKindCounts) {
    EXPECT_EQ(count("(2) of (5)"), 2);
    EXPECT_EQ(count("(x) (5)"), 5);
}

TEST(WebBadgeTest, RoundBracketsComeFirstWhereverTheyAre) {
    EXPECT_EQ(count("[9] Chat (4)"), 4);
}

TEST(WebBadgeTest, ANumberTooLargeFallsThroughToTheSquareBrackets) {
    EXPECT_EQ(count("(9223372036854775807)"), 9223372036854775807);
    EXPECT_EQ(count("(9223372036854775808) [6]"), 6);
    EXPECT_EQ(count("(99999999999999999999)"), 0);
    EXPECT_EQ(count("(99999999999999999999) (5)"), 0) << "only the first match counts";
    EXPECT_EQ(count("[99999999999999999999]"), 0);
}

TEST(WebBadgeTest, DigitsOfOtherScriptsAreNotRead) {
    EXPECT_EQ(count("(٣) Inbox"), 0);
}

TEST(WebBadgeTest, AHugeTitleIsHandled) {
    EXPECT_EQ(count(std::string(1'000'000, '(') + "3)"), 3);
    EXPECT_EQ(count("(" + std::string(1'000'000, '1')), 0);
}

TEST(WebBadgeTest, StartsWithoutACount) {
    const WebBadgeState state;
    EXPECT_EQ(state.apiBadge, std::nullopt);
    EXPECT_EQ(state.titleBadge, 0);
    EXPECT_EQ(state.label(), std::nullopt);
}

TEST(WebBadgeTest, TheTitlesCountIsShownUntilThePageReportsOne) {
    WebBadgeState state;
    state.setTitle("(4) Mail");
    EXPECT_EQ(state.label(), "4");
    state.setAPIBadge(7);
    EXPECT_EQ(state.label(), "7");
    state.setTitle("(5) Mail");
    EXPECT_EQ(state.label(), "7");
    EXPECT_EQ(state.titleBadge, 5);
}

TEST(WebBadgeTest, AReportOfNothingHidesTheTitlesCount) {
    WebBadgeState state;
    state.setTitle("(4) Mail");
    state.setAPIBadge(0);
    EXPECT_EQ(state.label(), std::nullopt);
}

TEST(WebBadgeTest, ANegativeReportCountsAsZero) {
    WebBadgeState state;
    state.setTitle("(4) Mail");
    state.setAPIBadge(-5);
    EXPECT_EQ(state.apiBadge, 0);
    EXPECT_EQ(state.label(), std::nullopt);
}

TEST(WebBadgeTest, ATitleWithoutACountClearsTheBadge) {
    WebBadgeState state;
    state.setTitle("(4) Mail");
    state.setTitle("Mail");
    EXPECT_EQ(state.label(), std::nullopt);
}

TEST(WebBadgeTest, EqualityLooksAtBothCounts) {
    WebBadgeState a;
    WebBadgeState b;
    EXPECT_EQ(a, b);
    a.setAPIBadge(0);
    EXPECT_NE(a, b);
    b.setAPIBadge(0);
    b.setTitle("(1)");
    EXPECT_NE(a, b);
}

} // namespace
} // namespace quorvel
