#include "Platform/windows/ActivationError.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

TEST(ActivationErrorTest, SaysWhatToDoInstead) {
    EXPECT_EQ(activationError(ActivationFailure::noWindow, "/A/Work.app").description(),
              "“Work.app” couldn’t be brought to the front: it is running, but has no window");
    EXPECT_EQ(activationError(ActivationFailure::notAllowed, "/A/Work.app").description(),
              "“Work.app” couldn’t be brought to the front: it is running, but this desktop lets "
              "only you do that. Click its icon in the dock or taskbar");
    EXPECT_EQ(activationError(ActivationFailure::noDisplay, "/A/Work.app").description(),
              "“Work.app” couldn’t be brought to the front: it is running, but there is no display "
              "here to show it on");
}

TEST(ActivationErrorTest, IsDistinguishedFromOtherErrors) {
    EXPECT_TRUE(isActivationError(activationError(ActivationFailure::noWindow, "/A/Work.app")));
    EXPECT_FALSE(isActivationError(
        PlatformError(std::make_error_code(std::errc::permission_denied), "/A", "opened")));
    EXPECT_FALSE(isActivationError(PlatformError::because("no", "/A", "opened")));
}

} // namespace
} // namespace quorvel
