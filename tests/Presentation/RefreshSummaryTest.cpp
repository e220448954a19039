#include "Presentation/RefreshSummary.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

TEST(RefreshSummaryTest, CountsWhatWasRefreshed) {
    EXPECT_EQ(refreshMessage({.refreshed = 1}, inEnglish), "1 wrapper was refreshed.");
    EXPECT_EQ(refreshMessage({.refreshed = 3, .current = 2}, inEnglish),
              "3 wrappers were refreshed.");
    EXPECT_EQ(refreshMessage({.current = 1}, inEnglish), "The wrapper is up to date.");
    EXPECT_EQ(refreshMessage({.current = 2}, inEnglish), "All wrappers are up to date.");
}

TEST(RefreshSummaryTest, SaysWhatACancelledOneDidNotGetTo) {
    EXPECT_EQ(refreshMessage({.refreshed = 2, .skipped = 1}, inEnglish),
              "2 wrappers were refreshed. Cancelled before the last one.");
    EXPECT_EQ(refreshMessage({.current = 2, .skipped = 5}, inEnglish),
              "No wrapper was refreshed. Cancelled before the last 5.");
}

TEST(RefreshSummaryTest, NamesTheFirstFailuresAndCountsTheOthers) {
    EXPECT_EQ(refreshMessage({.failures = {"a"}}, inEnglish),
              "No wrapper was refreshed.\n\n1 wrapper couldn’t be refreshed:\na");
    EXPECT_EQ(refreshMessage({.refreshed = 1, .failures = {"1", "2", "3", "4", "5", "6", "7"}},
                             inEnglish),
              "1 wrapper was refreshed.\n\n7 wrappers couldn’t be refreshed:\n1\n2\n3\n4\n5\n… "
              "and 2 more");
}

TEST(RefreshSummaryTest, EndsWithTheNotes) {
    EXPECT_EQ(refreshMessage({.refreshed = 2, .notes = {"a", "b"}}, inEnglish),
              "2 wrappers were refreshed.\n\na\nb");
}

} // namespace
} // namespace quorvel
