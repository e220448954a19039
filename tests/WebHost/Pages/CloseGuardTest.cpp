#include "WebHost/Pages/CloseGuard.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

using Ending = CloseGuard::Ending;

TEST(CloseGuardTest, APageThatHangsIsClosedAtTheSecondAttempt) {
    CloseGuard guard;
    EXPECT_FALSE(guard.closesAtOnce());
    EXPECT_TRUE(guard.closesAtOnce());
}

TEST(CloseGuardTest, APageThatWasNotLeftAsksAgain) {
    CloseGuard guard;
    EXPECT_FALSE(guard.closesAtOnce());
    guard.asksUser();
    EXPECT_FALSE(guard.answered(false));
    EXPECT_FALSE(guard.closesAtOnce());
}

TEST(CloseGuardTest, APageThatClosesItselfIsClosed) {
    EXPECT_EQ(CloseGuard().endingByEngine(), Ending::close);
}

TEST(CloseGuardTest, APageThatIsSlowToAskIsNotClosed) {
    CloseGuard guard;
    EXPECT_FALSE(guard.closesAtOnce());
    EXPECT_EQ(guard.endingByEngine(), Ending::askAgain);
    EXPECT_TRUE(guard.closesAfterAll()) << "it did not ask";
    guard.asksUser();
    EXPECT_FALSE(guard.closesAfterAll());
    EXPECT_TRUE(guard.answered(true)) << "the engine does not close it a second time";
}

TEST(CloseGuardTest, APageThatTheUserStaysOnIsNotClosed) {
    CloseGuard guard;
    EXPECT_FALSE(guard.closesAtOnce());
    guard.asksUser();
    EXPECT_FALSE(guard.answered(false));
    EXPECT_EQ(guard.endingByEngine(), Ending::stay);
    guard.settled();
    EXPECT_EQ(guard.endingByEngine(), Ending::close) << "by itself";
}

TEST(CloseGuardTest, LeavingForAnotherPageDoesNotClose) {
    CloseGuard guard;
    guard.asksUser();
    EXPECT_FALSE(guard.answered(true));
    EXPECT_FALSE(guard.closesAtOnce());
    guard.replaced();
    guard.asksUser();
    EXPECT_FALSE(guard.answered(true)) << "that was the page before";
    EXPECT_EQ(guard.endingByEngine(), Ending::close);
}

} // namespace
} // namespace quorvel
