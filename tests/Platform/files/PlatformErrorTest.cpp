#include "Platform/files/PlatformError.h"

#include <cerrno>
#include <gtest/gtest.h>

namespace quorvel {
namespace {

TEST(PlatformErrorTest, ReadsAsASentenceAboutTheItem) {
    const PlatformError error(std::make_error_code(std::errc::permission_denied), "/A/Work.app",
                              "removed");
    EXPECT_EQ(error.description(), "“Work.app” couldn’t be removed: permission denied");
    EXPECT_STREQ(error.what(), error.description().c_str());
}

TEST(PlatformErrorTest, NamesAFolderWithoutItsTrailingSlash) {
    const auto code = std::make_error_code(std::errc::permission_denied);
    EXPECT_TRUE(PlatformError(code, "/A/Work.app//", "opened")
                    .description()
                    .starts_with("“Work.app” couldn’t be opened"));
    EXPECT_TRUE(PlatformError(code, "/", "opened").description().starts_with("“/” "));
}

TEST(PlatformErrorTest, KeepsTheCodeAndTheWholePath) {
    errno = ENOTDIR;
    const PlatformError error = PlatformError::fromErrno("/A/b", "created");
    EXPECT_EQ(error.code(), std::errc::not_a_directory);
    EXPECT_EQ(error.path(), "/A/b");
}

TEST(PlatformErrorTest, EndsWithTheSystemsOwnReason) {
    const PlatformError error(std::make_error_code(std::errc::io_error), "x", "read");
    EXPECT_TRUE(error.description().ends_with(": Input/output error") ||
                error.description().ends_with(": input/output error"))
        << error.description();
}

TEST(PlatformErrorTest, CanHaveAReasonInsteadOfACode) {
    const PlatformError error = PlatformError::because("it is in use", "/A/Work.app", "moved");
    EXPECT_EQ(error.description(), "“Work.app” couldn’t be moved: it is in use");
    EXPECT_EQ(error.code(), std::errc::io_error);
    EXPECT_EQ(error.path(), "/A/Work.app");
}

TEST(PlatformErrorTest, NamesAnItemInside) {
    const auto code = std::make_error_code(std::errc::permission_denied);
    const PlatformError error = PlatformError::inside(code, "2024/a.jpg", "/A/Photos", "moved");
    EXPECT_EQ(error.description(), "“Photos” couldn’t be moved: “2024/a.jpg”: permission denied");
    EXPECT_EQ(error.code(), code);
    EXPECT_EQ(PlatformError::inside(code, "", "/A/Photos", "moved").description(),
              "“Photos” couldn’t be moved: permission denied");
}

TEST(PlatformErrorTest, AddsNothingToACompleteSentence) {
    const PlatformError error =
        PlatformError::withDescription("The application “Work” can’t be opened.", "/A/Work.app");
    EXPECT_EQ(error.description(), "The application “Work” can’t be opened.");
    EXPECT_EQ(error.code(), std::errc::io_error);
    EXPECT_EQ(error.path(), "/A/Work.app");
}

} // namespace
} // namespace quorvel
