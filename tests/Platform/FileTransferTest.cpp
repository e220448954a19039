#include "Platform/FileSystem.h"

#include "tests/support/OrdinaryUser.h"
#include "tests/support/TemporaryHome.h"

#include <cerrno>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

namespace quorvel {
namespace {

using namespace testing;
using namespace std::string_literals;
namespace fs = std::filesystem;

class FileTransfer : public ::testing::Test {
protected:
    [[nodiscard]] fs::path at(std::string_view name) const { return folder_ / name; }

    TemporaryFolder folder_;
};

// A folder on a file system other than that of the temporary folder, where the machine has one.
class OtherFileSystem {
public:
    explicit OtherFileSystem(const fs::path& here) {
        struct stat ours {};
        struct stat others {};
        if (::stat(here.c_str(), &ours) == 0 && ::stat("/dev/shm", &others) == 0 &&
            ours.st_dev != others.st_dev) {
            const ScopedEnvironment place("TMPDIR", "/dev/shm");
            folder_.emplace();
        }
    }

    [[nodiscard]] bool exists() const { return folder_.has_value(); }
    [[nodiscard]] fs::path at(std::string_view name) const { return *folder_ / name; }

private:
    std::optional<TemporaryFolder> folder_;
};

TEST_F(FileTransfer, CopyingCopiesTheBytesAndLeavesTheSource) {
    write(at("a"), "x\0y"s);
    copyFile(at("a"), at("b"));
    EXPECT_EQ(read(at("b")), "x\0y"s);
    EXPECT_EQ(read(at("a")), "x\0y"s);
}

TEST_F(FileTransfer, CopyingFollowsALink) {
    write(at("a"), "x");
    fs::create_symlink(at("a"), at("link"));
    copyFile(at("link"), at("b"));
    EXPECT_FALSE(isSymbolicLink(at("b")));
    EXPECT_EQ(read(at("b")), "x");
}

TEST_F(FileTransfer, CopyingReplacesNothing) {
    write(at("a"), "new");
    write(at("b"), "old");
    EXPECT_THROW(copyFile(at("a"), at("b")), PlatformError);
    EXPECT_EQ(read(at("b")), "old");
}

TEST_F(FileTransfer, CopyingWhatIsNoFileIsAnErrorAndNeverBlocks) {
    ::mkfifo(at("fifo").c_str(), 0600);
    EXPECT_THROW(copyFile(at("fifo"), at("b")), PlatformError);
    EXPECT_THROW(copyFile(folder_.path(), at("b")), PlatformError);
    EXPECT_THROW(copyFile(at("none"), at("b")), PlatformError);
    EXPECT_THROW(copyFile("/dev/zero", at("b")), PlatformError);
    EXPECT_FALSE(itemOrLinkExists(at("b")));
}

TEST_F(FileTransfer, CopyingKeepsWhoMayDoWhat) {
    write(at("a"), "x");
    fs::permissions(at("a"), fs::perms{0751});
    copyFile(at("a"), at("b"));
    EXPECT_EQ(fs::status(at("b")).permissions(), fs::perms{0751});
}

TEST_F(FileTransfer, CopyingThatFailsHalfWaySaysWhyAndLeavesNothing) {
    EXPECT_TRUE(asOrdinaryUser(folder_.path(), [&] {
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

TEST_F(FileTransfer, CopyingAPathWithANulIsRefused) {
    write(at("a"), "x");
    EXPECT_THROW(copyFile(at("a").native() + "\0z"s, at("b")), PlatformError);
    EXPECT_THROW(copyFile(at("a"), at("b").native() + "\0z"s), PlatformError);
    EXPECT_FALSE(itemOrLinkExists(at("b")));
}

TEST_F(FileTransfer, MovingMovesAFolderWithEverythingInIt) {
    write(at("a/deep/file"), "x");
    fs::create_symlink("nowhere", at("a/link"));
    const auto before = treeOf(at("a"));
    moveItem(at("a"), at("b"));
    EXPECT_EQ(treeOf(at("b")), before);
    EXPECT_FALSE(itemOrLinkExists(at("a")));
}

TEST_F(FileTransfer, MovingReplacesNothingNotEvenADanglingLink) {
    write(at("a"), "new");
    write(at("file"), "old");
    fs::create_directory(at("empty folder"));
    fs::create_symlink("nowhere", at("dangling"));
    for (const char* taken : {"file", "empty folder", "dangling"}) {
        const auto before = treeOf(folder_.path());
        EXPECT_THROW(moveItem(at("a"), at(taken)), PlatformError) << taken;
        EXPECT_EQ(treeOf(folder_.path()), before) << taken;
    }
}

// What network file systems answer.
class FileSystemWithoutExclusiveRenaming : public FileTransfer,
                                           public ::testing::WithParamInterface<int> {
protected:
    static int refusing(const fs::path& /*source*/, const fs::path& /*destination*/) {
        errno = GetParam();
        return -1;
    }
};

TEST_P(FileSystemWithoutExclusiveRenaming, ItemsAreMovedAllTheSame) {
    write(at("a/deep/file"), "x");
    fs::create_symlink("nowhere", at("a/link"));
    const auto before = treeOf(at("a"));
    moveItem(at("a"), at("b"), refusing);
    EXPECT_EQ(treeOf(at("b")), before);
    EXPECT_FALSE(itemOrLinkExists(at("a")));
}

TEST_P(FileSystemWithoutExclusiveRenaming, NothingIsReplacedNotEvenADanglingLink) {
    write(at("a"), "new");
    write(at("file"), "old");
    fs::create_directory(at("empty folder"));
    fs::create_symlink("nowhere", at("dangling"));
    for (const char* taken : {"file", "empty folder", "dangling"}) {
        const auto before = treeOf(folder_.path());
        try {
            moveItem(at("a"), at(taken), refusing);
            ADD_FAILURE() << taken << " was replaced";
        } catch (const PlatformError& error) {
            EXPECT_EQ(error.code(), std::errc::file_exists) << taken;
        }
        EXPECT_EQ(treeOf(folder_.path()), before) << taken;
    }
}

INSTANTIATE_TEST_SUITE_P(FileTransfer, FileSystemWithoutExclusiveRenaming,
                         ::testing::Values(EINVAL, ENOSYS, ENOTSUP));

TEST_F(FileTransfer, AnotherReasonNotToRenameIsNotWorkedAround) {
    write(at("a"), "x");
    const auto denying = [](const fs::path&, const fs::path&) {
        errno = EACCES;
        return -1;
    };
    EXPECT_THROW(moveItem(at("a"), at("b"), denying), PlatformError);
    EXPECT_EQ(read(at("a")), "x");
    EXPECT_FALSE(itemOrLinkExists(at("b")));
}

TEST_F(FileTransfer, MovingAFolderIntoItselfIsAnErrorThatLosesNothing) {
    write(at("a/file"), "x");
    EXPECT_THROW(moveItem(at("a"), at("a/b")), PlatformError);
    EXPECT_EQ(read(at("a/file")), "x");
}

TEST_F(FileTransfer, MovingNothingIsAnError) {
    EXPECT_THROW(moveItem(at("none"), at("b")), PlatformError);
}

TEST_F(FileTransfer, MovingAPathWithANulIsRefused) {
    write(at("a"), "x");
    EXPECT_THROW(moveItem(at("a").native() + "\0z"s, at("b")), PlatformError);
    EXPECT_THROW(moveItem(at("a"), at("b").native() + "\0z"s), PlatformError);
    EXPECT_EQ(read(at("a")), "x");
    EXPECT_FALSE(itemOrLinkExists(at("b")));
}

TEST_F(FileTransfer, MovingReachesAnotherFileSystem) {
    const OtherFileSystem other(folder_.path());
    if (!other.exists()) {
        GTEST_SKIP() << "there is no second file system here";
    }
    write(at("a/deep/file"), "x");
    fs::permissions(at("a/deep/file"), fs::perms{0640});
    fs::create_symlink("nowhere", at("a/link"));
    const auto before = treeOf(at("a"));
    moveItem(at("a"), other.at("b"));
    EXPECT_EQ(treeOf(other.at("b")), before);
    EXPECT_EQ(fs::status(other.at("b/deep/file")).permissions(), fs::perms{0640});
    EXPECT_FALSE(itemOrLinkExists(at("a")));
}

TEST_F(FileTransfer, MovingALinkToAnotherFileSystemMovesTheLink) {
    const OtherFileSystem other(folder_.path());
    if (!other.exists()) {
        GTEST_SKIP() << "there is no second file system here";
    }
    write(at("kept/file"), "x");
    fs::create_directory_symlink(at("kept"), at("link"));
    moveItem(at("link"), other.at("link"));
    EXPECT_EQ(fs::read_symlink(other.at("link")), at("kept"));
    EXPECT_EQ(read(at("kept/file")), "x");
    EXPECT_FALSE(itemOrLinkExists(at("link")));
}

TEST_F(FileTransfer, AMoveToAnotherFileSystemThatFailsLeavesTheSourceWhole) {
    const OtherFileSystem other(folder_.path());
    if (!other.exists()) {
        GTEST_SKIP() << "there is no second file system here";
    }
    write(at("a/file"), "x");
    ::mkfifo(at("a/fifo").c_str(), 0600);
    EXPECT_THROW(moveItem(at("a"), other.at("b")), PlatformError);
    EXPECT_EQ(read(at("a/file")), "x");
    EXPECT_TRUE(itemExists(at("a/fifo")));
    EXPECT_FALSE(itemOrLinkExists(other.at("b")));
}

TEST_F(FileTransfer, AMoveToAnotherFileSystemReplacesNothing) {
    const OtherFileSystem other(folder_.path());
    if (!other.exists()) {
        GTEST_SKIP() << "there is no second file system here";
    }
    write(at("a"), "new");
    write(other.at("b"), "old");
    EXPECT_THROW(moveItem(at("a"), other.at("b")), PlatformError);
    EXPECT_EQ(read(other.at("b")), "old");
    EXPECT_EQ(read(at("a")), "new");
}

} // namespace
} // namespace quorvel
