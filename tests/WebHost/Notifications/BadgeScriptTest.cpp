#include "WebHost/Notifications/BadgeScript.h"

#include <gtest/gtest.h>

#include <limits>

namespace quorvel {
namespace {

TEST(BadgeScriptTest, OnlyWholeNumbersThatPagesCanCountToAreCounts) {
    EXPECT_EQ(reportedBadge(0), 0);
    EXPECT_EQ(reportedBadge(7), 7);
    EXPECT_EQ(reportedBadge(9'007'199'254'740'991.0), 9'007'199'254'740'991);
    EXPECT_EQ(reportedBadge(9'007'199'254'740'992.0), std::nullopt);
    EXPECT_EQ(reportedBadge(-1), std::nullopt);
    EXPECT_EQ(reportedBadge(1.5), std::nullopt);
    EXPECT_EQ(reportedBadge(std::numeric_limits<double>::quiet_NaN()), std::nullopt);
    EXPECT_EQ(reportedBadge(std::numeric_limits<double>::infinity()), std::nullopt);
}

} // namespace
} // namespace quorvel
