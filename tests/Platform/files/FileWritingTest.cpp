#include "Platform/files/FileWriting.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/PlatformError.h"

#include "tests/support/EveryStep.h"
#include "tests/support/SmallDisk.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/UnprivilegedUser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

class FileWritingTest : public ::testing::Test {
protected:
    [[nodiscard]] fs::path at(std::string_view name) const { return folder_ / name; }

    [[nodiscard]] std::vector<std::string> names() const {
        return directoryEntries(folder_.path()).value();
    }

    TemporaryFolder folder_;
};

struct stat statusOf(const fs::path& path) {
    struct stat status {};
    EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
    return status;
}

TEST_F(FileWritingTest, AFileIsReplacedWithoutLeftovers) {
    write(at("file"), "a much longer text");
    writeFile(at("file"), "short");
    EXPECT_EQ(read(at("file")), "short");
    EXPECT_THAT(names(), ::testing::ElementsAre("file"));
}

TEST_F(FileWritingTest, OtherHardLinksKeepTheOldFile) {
    write(at("file"), "a much longer text");
    fs::create_hard_link(at("file"), at("other name"));
    writeFile(at("file"), "short");
    EXPECT_EQ(read(at("other name")), "a much longer text");
}

TEST_F(FileWritingTest, ANewFileIsWrittenDirectly) {
    writeFile(at("file"), "x");
    EXPECT_EQ(read(at("file")), "x");
    EXPECT_THAT(names(), ::testing::ElementsAre("file"));
}

TEST_F(FileWritingTest, AWholeFileIsNeverSeenHalf) {
    for (int step = 0;; ++step) {
        fs::remove(at("file"));
        const Kill kill = killedBefore(step, [&] { writeWholeFile(at("file"), "new text"); });
        if (kill == Kill::notPermitted) {
            GTEST_SKIP() << "the kernel forbids tracing";
        }
        EXPECT_TRUE(!fs::exists(at("file")) || read(at("file")) == "new text") << step;
        if (kill == Kill::ended) {
            EXPECT_TRUE(fs::exists(at("file")));
            break;
        }
    }
    EXPECT_GT(names().size(), 1U) << "interruptions left temporary files";
    removeUnfinishedFiles(folder_.path());
    EXPECT_GT(names().size(), 1U) << "which may be another program's";
    for (const std::string& name : names()) {
        fs::last_write_time(at(name), fs::file_time_type::clock::now() - std::chrono::minutes(2));
    }
    removeUnfinishedFiles(folder_.path());
    EXPECT_THAT(names(), ::testing::ElementsAre("file"));
}

TEST_F(FileWritingTest, AWholeFileReplacesALinkItself) {
    write(at("mine"), "mine");
    fs::create_symlink(at("mine"), at("link"));
    writeWholeFile(at("link"), "new");
    EXPECT_EQ(read(at("mine")), "mine");
    EXPECT_FALSE(fs::is_symlink(at("link")));
    EXPECT_THROW(writeWholeFile(at("missing/file"), "x"), PlatformError);
}

TEST_F(FileWritingTest, TheTargetOfLinksIsReplaced) {
    write(at("below/file"), "old");
    fs::create_symlink("below/file", at("link"));
    fs::create_symlink(at("link"), at("second"));
    writeFile(at("second"), "new");
    EXPECT_EQ(read(at("below/file")), "new");
    EXPECT_EQ(fs::read_symlink(at("second")), at("link"));
    EXPECT_EQ(fs::read_symlink(at("link")), "below/file");
    EXPECT_THAT(directoryEntries(at("below")).value(), ::testing::ElementsAre("file"));
}

TEST_F(FileWritingTest, TheMissingTargetOfALinkIsCreated) {
    fs::create_directory(at("below"));
    fs::create_symlink("below/file", at("link"));
    fs::create_symlink("link", at("second"));
    writeFile(at("second"), "new");
    EXPECT_TRUE(fs::is_symlink(at("link")));
    EXPECT_EQ(read(at("below/file")), "new");
}

TEST_F(FileWritingTest, ModeAndAttributesAreKept) {
    write(at("file"), "old");
    ASSERT_EQ(::chmod(at("file").c_str(), 0642), 0);
    ASSERT_EQ(::setxattr(at("file").c_str(), "user.quorvel.test", "kept", 4, 0), 0);
    writeFile(at("file"), "new");
    EXPECT_EQ(statusOf(at("file")).st_mode & 07777U, 0642U);
    char value[8]{};
    EXPECT_EQ(::getxattr(at("file").c_str(), "user.quorvel.test", value, sizeof value), 4);
    EXPECT_STREQ(value, "kept");
}

TEST_F(FileWritingTest, TheOwnerIsKept) {
    if (::getuid() != 0) {
        GTEST_SKIP() << "only root can give a file away";
    }
    write(at("file"), "old");
    ASSERT_EQ(::chown(at("file").c_str(), 1234, 5678), 0);
    ASSERT_EQ(::chmod(at("file").c_str(), 06755), 0);
    writeFile(at("file"), "new");
    EXPECT_EQ(statusOf(at("file")).st_uid, 1234U);
    EXPECT_EQ(statusOf(at("file")).st_gid, 5678U);
    EXPECT_EQ(statusOf(at("file")).st_mode & 07777U, 06755U);
}

TEST_F(FileWritingTest, AnotherUsersFileThatTheGroupMayWriteIsReplaced) {
    if (::getuid() != 0) {
        GTEST_SKIP() << "only root can give a file away";
    }
    constexpr uid_t owner = 1234;
    constexpr gid_t group = 65534; // the ordinary user's
    constexpr gid_t otherGroup = 5678;
    write(at("shared/file"), "old");
    ASSERT_EQ(::chown(at("shared/file").c_str(), owner, group), 0);
    ASSERT_EQ(::chmod(at("shared/file").c_str(), 06664), 0);
    // New files in this folder belong to another group.
    ASSERT_EQ(::chown(at("shared").c_str(), owner, otherGroup), 0);
    ASSERT_EQ(::chmod(at("shared").c_str(), 02777), 0);
    EXPECT_TRUE(asUnprivilegedUser(folder_.path(), [&] {
        writeFile(at("shared/file"), "new");
        return read(at("shared/file")) == "new";
    }));
    EXPECT_EQ(statusOf(at("shared/file")).st_gid, group);
    EXPECT_EQ(statusOf(at("shared/file")).st_mode & 07777U, 0664U);
    EXPECT_NE(statusOf(at("shared/file")).st_uid, owner);
}

TEST_F(FileWritingTest, AFileThatMayNotBeWrittenIsNotReplaced) {
    EXPECT_TRUE(asUnprivilegedUser(folder_.path(), [&] {
        write(at("file"), "old");
        fs::permissions(at("file"), fs::perms{0444});
        try {
            writeFile(at("file"), "new");
        } catch (const PlatformError& error) {
            return error.code() == std::errc::permission_denied && read(at("file")) == "old" &&
                   names().size() == 1;
        }
        return false;
    }));
}

TEST_F(FileWritingTest, AFileInAReadOnlyFolderIsUnchanged) {
    EXPECT_TRUE(asUnprivilegedUser(folder_.path(), [&] {
        write(at("closed/file"), "old");
        fs::permissions(at("closed"), fs::perms{0555});
        try {
            writeFile(at("closed/file"), "new");
        } catch (const PlatformError& error) {
            return error.code() == std::errc::permission_denied && read(at("closed/file")) == "old";
        }
        return false;
    }));
}

TEST_F(FileWritingTest, AFullDiskLeavesTheOldFileUnchangedAndNothingElse) {
    const auto result = onSmallDisk(folder_.path(), "size=64k", [&]() -> std::string {
        const std::string old(40000, 'o');
        write(at("file"), old);
        for (const std::size_t size : {30000U, 40000U, 60000U}) {
            try {
                writeFile(at("file"), std::string(size, 'n'));
                return "no error for " + std::to_string(size);
            } catch (const PlatformError& error) {
                if (error.code() != std::errc::no_space_on_device) {
                    return error.what();
                }
            }
            if (read(at("file")) != old || names().size() != 1) {
                return "not as it was after " + std::to_string(size);
            }
        }
        return {};
    });
    if (!result) {
        GTEST_SKIP() << "no file system may be mounted here";
    }
    EXPECT_EQ(*result, "");
}

TEST_F(FileWritingTest, NothingIsLeftOfANewFileOnAFullDisk) {
    const auto result = onSmallDisk(folder_.path(), "size=64k", [&]() -> std::string {
        try {
            writeFile(at("file"), std::string(100000, 'n'));
        } catch (const PlatformError& error) {
            const bool full = error.code() == std::errc::no_space_on_device;
            return full && names().empty() ? "" : error.what();
        }
        return "no error";
    });
    if (!result) {
        GTEST_SKIP() << "no file system may be mounted here";
    }
    EXPECT_EQ(*result, "");
}

TEST_F(FileWritingTest, AKillAtAnyMomentLeavesTheOldFileOrTheNewOne) {
    const std::string before(70000, 'o');
    const std::string after(50000, 'n');
    bool sawOld = false;
    Kill kill = Kill::done;
    for (int step = 0; kill == Kill::done; ++step) {
        write(at("file"), before);
        kill = killedBefore(step, [&] { writeFile(at("file"), after); });
        if (kill == Kill::notPermitted) {
            GTEST_SKIP() << "processes may not be traced here";
        }
        const std::string now = read(at("file"));
        EXPECT_TRUE(now == before || now == after) << "killed before call " << step;
        sawOld = sawOld || now == before;
    }
    EXPECT_TRUE(sawOld);
    EXPECT_EQ(read(at("file")), after);
}

} // namespace
} // namespace quorvel
