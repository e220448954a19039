#include "Platform/desktop/RunningApplications.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

RunningApplications someApplications() {
    return RunningApplications(
        {{"com.b", "/B.app", 30}, {"com.a", "/A.app", 20}, {"com.b", "/B.app", 10}});
}

TEST(RunningApplicationsTest, AreOrderedByProcessNumber) {
    const RunningApplications applications = someApplications();
    ASSERT_EQ(applications.all().size(), 3U);
    EXPECT_EQ(applications.all()[0].pid, 10);
    EXPECT_EQ(applications.all()[1].pid, 20);
    EXPECT_EQ(applications.all()[2].pid, 30);
}

TEST(RunningApplicationsTest, AreFoundByTheirIdentifier) {
    const auto found = someApplications().withBundleIdentifier("com.b");
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].pid, 10);
    EXPECT_EQ(found[1].pid, 30);
}

TEST(RunningApplicationsTest, AnIdentifierIsMatchedExactly) {
    EXPECT_TRUE(someApplications().contains("com.a"));
    EXPECT_FALSE(someApplications().contains("com.A"));
    EXPECT_FALSE(someApplications().contains("com"));
    EXPECT_FALSE(RunningApplications().contains(""));
}

} // namespace
} // namespace quorvel
