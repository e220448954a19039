#include "Platform/copying/FileCopy.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/PlatformError.h"

#include "tests/support/TemporaryHome.h"
#include "tests/support/UnprivilegedUser.h"

#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

namespace quorvel {
namespace {

using namespace testing;
using namespace std::string_literals;
namespace fs = std::filesystem;

class FileCopyTest : public ::testing::Test {
protected:
    [[nodiscard]] fs::path at(std::string_view name) const { return folder_ / name; }

    TemporaryFolder folder_;
};

TEST_F(FileCopyTest, CopyingCopiesTheBytesAndLeavesTheSource) {
    write(at("a"), "x\0y"s);
    copyFile(at("a"), at("b"));
    EXPECT_EQ(read(at("b")), "x\0y"s);
    EXPECT_EQ(read(at("a")), "x\0y"s);
}

TEST_F(FileCopyTest, CopyingFollowsALink) {
    write(at("a"), "x");
    fs::create_symlink(at("a"), at("link"));
    copyFile(at("link"), at("b"));
    EXPECT_FALSE(isSymbolicLink(at("b")));
    EXPECT_EQ(read(at("b")), "x");
}

TEST_F(FileCopyTest, CopyingReplacesNothing) {
    write(at("a"), "new");
    write(at("b"), "old");
    EXPECT_THROW(copyFile(at("a"), at("b")), PlatformError);
    EXPECT_EQ(read(at("b")), "old");
}

TEST_F(FileCopyTest, CopyingASpecialFileIsAnErrorAndNeverBlocks) {
    ::mkfifo(at("fifo").c_str(), 0600);
    EXPECT_THROW(copyFile(at("fifo"), at("b")), PlatformError);
    EXPECT_THROW(copyFile(folder_.path(), at("b")), PlatformError);
    EXPECT_THROW(copyFile(at("none"), at("b")), PlatformError);
    EXPECT_THROW(copyFile("/dev/zero", at("b")), PlatformError);
    EXPECT_FALSE(itemOrLinkExists(at("b")));
}

TEST_F(FileCopyTest, CopyingKeepsThePermissions) {
    write(at("a"), "x");
    fs::permissions(at("a"), fs::perms{0751});
    copyFile(at("a"), at("b"));
    EXPECT_EQ(fs::status(at("b")).permissions(), fs::perms{0751});
}

TEST_F(FileCopyTest, AFailedCopyNamesTheReasonAndLeavesNothing) {
    EXPECT_TRUE(asUnprivilegedUser(folder_.path(), [&] {
        write(at("a"), std::string(200000, 'x'));
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{100000, 100000};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        try {
            copyFile(at("a"), at("b"));
        } catch (const PlatformError& error) {
            return error.code() == std::errc::file_too_large && !itemExists(at("b"));
        }
        return false;
    }));
}

TEST_F(FileCopyTest, CopyingAPathWithANulIsRefused) {
    write(at("a"), "x");
    EXPECT_THROW(copyFile(at("a").native() + "\0z"s, at("b")), PlatformError);
    EXPECT_THROW(copyFile(at("a"), at("b").native() + "\0z"s), PlatformError);
    EXPECT_FALSE(itemOrLinkExists(at("b")));
}

} // namespace
} // namespace quorvel
