#include "WebHost/Pages/FloodCaps.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

using namespace std::chrono_literals;

constexpr FloodClock::time_point start{1h};

TEST(FloodCapsTest, ARateAdmitsThatManyInAnySpan) {
    RateCap cap(3, 60s);
    EXPECT_TRUE(cap.admits(start));
    EXPECT_TRUE(cap.admits(start + 10s));
    EXPECT_TRUE(cap.admits(start + 20s));
    EXPECT_FALSE(cap.admits(start + 59s));
    EXPECT_TRUE(cap.admits(start + 60s)) << "the first is a span ago";
    EXPECT_FALSE(cap.admits(start + 61s));
    EXPECT_TRUE(cap.admits(start + 70s)) << "the refused ones don't count";
}

TEST(FloodCapsTest, AThousandNotificationsAreFive) {
    RateCap cap = notificationCap();
    int admitted = 0;
    for (int count = 0; count < 1000; ++count) {
        admitted += cap.admits(start + count * 50ms) ? 1 : 0;
    }
    EXPECT_EQ(admitted, 5);
}

TEST(FloodCapsTest, TheFourthCrashInAMinuteIsNotReloaded) {
    RateCap cap = reloadCap();
    EXPECT_TRUE(cap.admits(start) && cap.admits(start + 1s) && cap.admits(start + 2s));
    EXPECT_FALSE(cap.admits(start + 3s));
    EXPECT_TRUE(cap.admits(start + 61s));
}

TEST(FloodCapsTest, AGestureOpensOneWindow) {
    PopupCap cap;
    EXPECT_FALSE(cap.admits(0, 0)) << "nobody has clicked yet";
    EXPECT_TRUE(cap.admits(1, 0));
    EXPECT_FALSE(cap.admits(1, 1));
    EXPECT_TRUE(cap.admits(2, 1));
    EXPECT_FALSE(cap.admits(1, 2)) << "an older gesture";
}

TEST(FloodCapsTest, AtMostFiveWindowsAreOpen) {
    PopupCap cap;
    std::uint64_t gesture = 1;
    for (std::size_t open = 0; open < 5; ++open) {
        EXPECT_TRUE(cap.admits(gesture++, open));
    }
    EXPECT_FALSE(cap.admits(gesture, 5));
    EXPECT_TRUE(cap.admits(gesture, 4)) << "the refused one did not use up the gesture";
}

TEST(FloodCapsTest, DialogsCanBeStoppedFromTheThirdOn) {
    DialogCap cap;
    EXPECT_TRUE(cap.admits());
    EXPECT_FALSE(cap.offersToStop());
    EXPECT_TRUE(cap.admits());
    EXPECT_FALSE(cap.offersToStop());
    EXPECT_TRUE(cap.admits());
    EXPECT_TRUE(cap.offersToStop());
    cap.stop();
    EXPECT_FALSE(cap.admits());
    cap.reset();
    EXPECT_TRUE(cap.admits()) << "another page";
    EXPECT_FALSE(cap.offersToStop());
}

TEST(FloodCapsTest, APageThatLoadsItselfAgainKeepsItsLimits) {
    PageVisit visit;
    EXPECT_TRUE(visit.begins("a.example", 0));
    visit.used(2);
    EXPECT_FALSE(visit.begins("a.example", 2));
    EXPECT_TRUE(visit.begins("a.example", 3)) << "the user did something";
    visit.used(3);
    EXPECT_TRUE(visit.begins("b.example", 3)) << "another host";
    EXPECT_FALSE(visit.begins("b.example", 3));
}

} // namespace
} // namespace quorvel
