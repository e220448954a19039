#include "WebHost/Pages/CloseGuard.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

TEST(CloseGuardTest, APageThatHangsIsClosedAtTheSecondAttempt) {
    CloseGuard guard;
    EXPECT_FALSE(guard.closesAtOnce());
    EXPECT_TRUE(guard.closesAtOnce());
}

TEST(CloseGuardTest, APageThatWasNotLeftAsksAgain) {
    CloseGuard guard;
    EXPECT_FALSE(guard.closesAtOnce());
    guard.reacted();
    EXPECT_FALSE(guard.closesAtOnce());
}

} // namespace
} // namespace quorvel
