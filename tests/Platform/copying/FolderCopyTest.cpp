#include "Platform/copying/FolderCopy.h"

#include "Platform/files/PlatformError.h"
#include "tests/support/LoopDisk.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/UnprivilegedUser.h"

#include <array>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>
#include <sys/socket.h>
#include <sys/statvfs.h>
#include <sys/un.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <thread>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::HasSubstr;
namespace fs = std::filesystem;

struct stat statusOf(const fs::path& path) {
    struct stat status {};
    EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
    return status;
}

void setDate(const fs::path& path, time_t seconds, long nanoseconds) {
    const std::array<timespec, 2> dates{timespec{seconds - 1000, 1},
                                        timespec{seconds, nanoseconds}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), dates.data(), AT_SYMLINK_NOFOLLOW), 0) << path;
}

FolderCopyReport copied(const fs::path& from, const fs::path& to, FolderCopyOptions options = {}) {
    fs::create_directory(to);
    const FileHandle folder(::open(to.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return FolderCopy(from, std::move(options)).copyInto(folder.descriptor());
}

std::string errorOf(const fs::path& from, const fs::path& to, FolderCopyOptions options = {}) {
    try {
        (void)copied(from, to, std::move(options));
        return {};
    } catch (const Error& error) {
        return error.what();
    }
}

class FolderCopyTest : public ::testing::Test {
protected:
    [[nodiscard]] fs::path from(const std::string& name = "") const {
        return folder_ / "from" / name;
    }
    [[nodiscard]] fs::path to(const std::string& name = "") const { return folder_ / "to" / name; }

    TemporaryFolder folder_{};
};

TEST_F(FolderCopyTest, KeepsContentsModesDatesLinksAndAttributes) {
    write(from("a/b/text"), "hello");
    write(from("program"), "#!/bin/sh\n");
    fs::permissions(from("program"), fs::perms{0750});
    fs::permissions(from("a"), fs::perms{0700});
    fs::create_symlink("../nowhere", from("a/link"));
    fs::create_directory(from("empty"));
    const bool hasAttributes =
        ::setxattr(from("program").c_str(), "user.note", "kept", 4, 0) == 0 &&
        ::setxattr(from("a").c_str(), "user.note", "too", 3, 0) == 0;
    for (const char* path : {"a/b/text", "program", "a/link", "a/b", "a", "empty", ""}) {
        setDate(from(path), 1'000'000'000 + static_cast<time_t>(std::string(path).size()), 123'456);
    }
    const FolderCopyReport report = copied(from(), to());
    EXPECT_EQ(treeOf(to()), treeOf(from()));
    EXPECT_EQ(report.items, 6U);
    EXPECT_EQ(report.bytes, 15U);
    EXPECT_EQ(report.clonedFiles + report.copiedFiles, 2U);
    for (const char* path : {"a/b/text", "program", "a/link", "a/b", "a", "empty", ""}) {
        const struct stat original = statusOf(from(path));
        const struct stat copy = statusOf(to(path));
        EXPECT_EQ(copy.st_mode, original.st_mode) << path;
        EXPECT_EQ(copy.st_mtim.tv_sec, original.st_mtim.tv_sec) << path;
        EXPECT_EQ(copy.st_mtim.tv_nsec, 123'456) << path;
    }
    if (hasAttributes) {
        std::array<char, 8> value{};
        EXPECT_EQ(::getxattr(to("program").c_str(), "user.note", value.data(), value.size()), 4);
        EXPECT_EQ(std::string(value.data()), "kept");
        EXPECT_EQ(::getxattr(to("a").c_str(), "user.note", value.data(), value.size()), 3);
    }
}

TEST_F(FolderCopyTest, HardLinksStayTogetherAndApartFromTheOriginals) {
    write(from("one"), "shared");
    fs::create_directory(from("deep"));
    fs::create_hard_link(from("one"), from("deep/two"));
    fs::create_hard_link(from("one"), folder_ / "outside");
    EXPECT_EQ(copied(from(), to()).copiedFiles + 0U, 1U);
    EXPECT_TRUE(fs::equivalent(to("one"), to("deep/two")));
    EXPECT_FALSE(fs::equivalent(to("one"), from("one")));
    EXPECT_EQ(fs::hard_link_count(to("one")), 2U);
}

TEST_F(FolderCopyTest, EveryNameOfAFileOrALinkIsShown) {
    write(from("file"), "shared");
    fs::create_symlink("elsewhere", from("link"));
    fs::create_hard_link(from("file"), from("file 2"));
    ASSERT_EQ(::link(from("link").c_str(), from("link 2").c_str()), 0);
    std::set<std::string> shown;
    FolderCopyOptions options;
    options.copied = [&](const CopiedContent& item) {
        shown.insert(item.path + (item.file >= 0 ? ":" : " -> ") + item.target);
    };
    (void)copied(from(), to(), options);
    EXPECT_EQ(shown, (std::set<std::string>{"file:", "file 2:", "link -> elsewhere",
                                            "link 2 -> elsewhere"}));
}

TEST_F(FolderCopyTest, HolesAreKept) {
    constexpr std::uintmax_t size = std::uintmax_t{64} << 20U;
    write(from("sparse"), "begin");
    fs::resize_file(from("sparse"), size);
    const FolderCopyReport report = copied(from(), to());
    EXPECT_EQ(fs::file_size(to("sparse")), size);
    EXPECT_EQ(read(to("sparse")).substr(0, 5), "begin");
    EXPECT_LE(statusOf(to("sparse")).st_blocks, statusOf(from("sparse")).st_blocks);
    EXPECT_LT(report.bytesTaken, 65536U);
    EXPECT_EQ(report.bytes, size);
}

TEST_F(FolderCopyTest, SocketsAndFifosAreLeftOut) {
    write(from("kept"), "");
    ASSERT_EQ(::mkfifo(from("fifo").c_str(), 0600), 0);
    const FileHandle socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    from("socket").string().copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(
        ::bind(socket.descriptor(), reinterpret_cast<const sockaddr*>(&address), sizeof address),
        0);
    EXPECT_EQ(copied(from(), to()).items, 1U);
    EXPECT_EQ(treeOf(to()).size(), 1U);
}

TEST_F(FolderCopyTest, WhatTheCallerLeavesOutStaysBehindWithAllThatIsInIt) {
    write(from("kept/lock"), "");
    write(from("lock/file"), "");
    write(from("lock/deep/file"), "");
    const auto report = copied(
        from(), to(), {.excludes = [](const CopiedItem& item) { return item.path == "lock"; }});
    EXPECT_TRUE(fs::exists(to("kept/lock")));
    EXPECT_FALSE(fs::exists(to("lock")));
    EXPECT_EQ(report.items, 2U);
}

TEST_F(FolderCopyTest, AFolderThatIsALinkIsRefused) {
    write(folder_ / "real/file", "");
    fs::create_symlink("real", folder_ / "from");
    EXPECT_THAT(errorOf(from(), to()), HasSubstr("“from” couldn’t be copied: "));
    EXPECT_TRUE(treeOf(to()).empty());
}

TEST_F(FolderCopyTest, AFileThatCantBeReadIsNamed) {
    write(from("good"), "");
    write(from("sub/secret"), "");
    fs::permissions(from("sub/secret"), fs::perms{0000});
    EXPECT_TRUE(asUnprivilegedUser(folder_.path(), [&] {
        return errorOf(from(), to()) ==
               "“from” couldn’t be copied: “sub/secret”: permission denied";
    }));
}

TEST_F(FolderCopyTest, AChangeMeanwhileIsAnError) {
    struct Change {
        const char* what;
        std::function<void()> make;
    };
    const std::vector<Change> changes{
        {"a file that was copied already", [&] { write(from("a/first"), "second"); }},
        {"the same size", [&] { write(from("a/first"), "FIRST"); }},
        {"a new file", [&] { write(from("a/new"), ""); }},
        {"a file that is gone", [&] { fs::remove(from("a/first")); }},
        {"a mode", [&] { fs::permissions(from("a/first"), fs::perms{0600}); }},
        {"the folder itself", [&] { write(from("new"), ""); }},
    };
    for (const Change& change : changes) {
        fs::remove_all(from());
        fs::remove_all(to());
        write(from("a/first"), "first");
        write(from("b"), "");
        int items = 0;
        const std::string error =
            errorOf(from(), to(), {.excludes = [&](const CopiedItem& /*item*/) {
                        constexpr int all = 3;
                        if (++items == all) {
                            // File systems date changes by the ticks of a clock.
                            std::this_thread::sleep_for(std::chrono::milliseconds(20));
                            change.make();
                        }
                        return false;
                    }});
        EXPECT_EQ(items, 3);
        EXPECT_THAT(error, HasSubstr("changed while it was copied")) << change.what;
    }
}

TEST_F(FolderCopyTest, WhatStaysBehindMayChange) {
    write(from("lock"), "");
    write(from("file"), "");
    EXPECT_EQ(errorOf(from(), to(),
                      {.excludes =
                           [&](const CopiedItem& item) {
                               if (item.path == "file") {
                                   write(from("lock"), "changed");
                               }
                               return item.path == "lock";
                           }}),
              "");
}

TEST_F(FolderCopyTest, ACopyCanBeCancelledInTheMiddleOfALargeFile) {
    write(from("large"), std::string(std::size_t{40} << 20U, 'x'));
    std::atomic<bool> cancelled{false};
    std::uintmax_t last = 0;
    const FolderCopyOptions options{.progress =
                                        [&](const CopyProgress& progress) {
                                            last = progress.bytes;
                                            cancelled = progress.bytes > 0;
                                        },
                                    .cancelled = &cancelled};
    EXPECT_THROW((void)copied(from(), to(), options), CopyCancelled);
    EXPECT_GT(last, 0U);
}

TEST_F(FolderCopyTest, ReportsItsProgressToTheEnd) {
    write(from("a/one"), "12345");
    write(from("two"), "123");
    std::vector<CopyProgress> reports;
    (void)copied(from(), to(),
                 {.progress = [&](const CopyProgress& progress) { reports.push_back(progress); }});
    ASSERT_FALSE(reports.empty());
    EXPECT_EQ(reports.front().allItems, 3U);
    EXPECT_EQ(reports.front().allBytes, 8U);
    EXPECT_EQ(reports.back().items, 3U);
    EXPECT_EQ(reports.back().bytes, 8U);
}

TEST_F(FolderCopyTest, NothingIsCopiedAcrossAMount) {
    write(folder_ / "elsewhere/file", "");
    write(from("before"), "");
    fs::create_directories(from("sub/mounted"));
    write(from("sub/file"), "");
    const auto problem = inPrivateMounts([&]() -> std::string {
        bindMount(folder_ / "elsewhere", from("sub/mounted"));
        const std::string error = errorOf(from(), to());
        if (error != "“from” couldn’t be copied: “sub/mounted” is on another file system") {
            return "a folder: " + error;
        }
        return treeOf(to()).empty() ? "" : "something was copied before";
    });
    const auto ofAFile = inPrivateMounts([&]() -> std::string {
        bindMount(folder_ / "elsewhere/file", from("sub/file"));
        const std::string error = errorOf(from(), to());
        return error == "“from” couldn’t be copied: “sub/file” is on another file system"
                   ? ""
                   : "a file: " + error;
    });
    if (!problem || !ofAFile) {
        GTEST_SKIP() << "the kernel forbids private mounts";
    }
    EXPECT_EQ(*problem, "");
    EXPECT_EQ(*ofAFile, "");
}

class FolderCopyTestOnLoopDisks : public ::testing::TestWithParam<const char*> {};

std::uintmax_t bytesUsed(const fs::path& folder) {
    ::sync();
    struct statvfs facts {};
    EXPECT_EQ(::statvfs(folder.c_str(), &facts), 0);
    return (facts.f_blocks - facts.f_bfree) * facts.f_frsize;
}

TEST_P(FolderCopyTestOnLoopDisks, FilesAreClonedAndTakeNearlyNothing) {
    const TemporaryFolder folder;
    const fs::path disk = folder / "disk";
    fs::create_directory(disk);
    const LoopDiskResult result = onLoopDisk(disk, GetParam(), [&]() -> std::string {
        constexpr int files = 100;
        constexpr std::size_t size = std::size_t{512} << 10U;
        for (int number = 0; number < files; ++number) {
            write(disk / "from" / std::to_string(number),
                  std::string(size, static_cast<char>(number + 1)));
        }
        const std::uintmax_t before = bytesUsed(disk);
        const FolderCopyReport report = copied(disk / "from", disk / "to");
        const std::uintmax_t more = bytesUsed(disk) - before;
        if (report.clonedFiles != files || report.copiedFiles != 0 || report.bytesTaken != 0) {
            return std::to_string(report.copiedFiles) + " files were copied";
        }
        if (treeOf(disk / "from") != treeOf(disk / "to")) {
            return "the copies differ";
        }
        // The clone is a separate file.
        write(disk / "to/1", "changed");
        if (read(disk / "from/1").size() != size) {
            return "the original has changed";
        }
        return more * 100 <= files * size ? "" : std::to_string(more) + " bytes more";
    });
    if (!result.skipped.empty()) {
        GTEST_SKIP() << result.skipped;
    }
    EXPECT_EQ(result.problem, "");
}

INSTANTIATE_TEST_SUITE_P(Each, FolderCopyTestOnLoopDisks, ::testing::Values("btrfs", "xfs"),
                         [](const auto& kind) { return std::string(kind.param); });

} // namespace
} // namespace quorvel
