#include "Platform/copying/ItemMover.h"
#include "Platform/files/PlatformError.h"

#include "Platform/files/FileHandle.h"
#include "Platform/files/FileSystem.h"
#include "Platform/staging/ExclusiveRename.h"
#include "tests/support/EveryStep.h"
#include "tests/support/OtherVolume.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/SmallDisk.h"
#include "tests/support/UnprivilegedUser.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

// From the temporary folder's file system to another one, or vice versa.
class ItemMoverVolumesTest : public ::testing::TestWithParam<bool> {
protected:
    void SetUp() override {
        if (!other_.exists()) {
            GTEST_SKIP() << "there is no second file system here";
        }
    }

    [[nodiscard]] fs::path from(std::string_view name) const {
        return GetParam() ? folder_ / name : other_ / name;
    }
    [[nodiscard]] fs::path to(std::string_view name) const {
        return GetParam() ? other_ / name : folder_ / name;
    }

    // Returns the names beside the source and beside the destination.
    [[nodiscard]] std::vector<std::string> namesBesideBoth() const {
        std::vector<std::string> names;
        for (const fs::path& folder : {folder_.path(), other_.path()}) {
            for (const auto& item : fs::directory_iterator(folder)) {
                names.push_back(item.path().filename().string());
            }
        }
        return names;
    }

    TemporaryFolder folder_;
    OtherVolume other_{folder_.path()};
};

INSTANTIATE_TEST_SUITE_P(Both, ItemMoverVolumesTest, ::testing::Bool(), [](const auto& direction) {
    return direction.param ? "FromTheTemporaryFolder" : "ToTheTemporaryFolder";
});

struct stat statusOf(const fs::path& path) {
    struct stat status {};
    EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
    return status;
}

void setDate(const fs::path& path, time_t seconds, long nanoseconds) {
    const std::array<timespec, 2> dates{timespec{seconds - 1000, nanoseconds - 1},
                                        timespec{seconds, nanoseconds}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), dates.data(), AT_SYMLINK_NOFOLLOW), 0) << path;
}

void expectDates(const fs::path& path, time_t seconds, long nanoseconds) {
    const struct stat status = statusOf(path);
    EXPECT_EQ(status.st_mtim.tv_sec, seconds) << path;
    EXPECT_EQ(status.st_mtim.tv_nsec, nanoseconds) << path;
    EXPECT_EQ(status.st_atim.tv_sec, seconds - 1000) << path;
    EXPECT_EQ(status.st_atim.tv_nsec, nanoseconds - 1) << path;
}

void setAttribute(const fs::path& path, const std::string& value) {
    ASSERT_EQ(::setxattr(path.c_str(), "user.quorvel.test", value.data(), value.size(), 0), 0);
}

std::string attribute(const fs::path& path) {
    std::array<char, 64> value{};
    const ssize_t size = ::getxattr(path.c_str(), "user.quorvel.test", value.data(), value.size());
    return size < 0 ? "none" : std::string(value.data(), static_cast<std::size_t>(size));
}

std::string failureOf(const std::function<void()>& step) {
    try {
        step();
    } catch (const PlatformError& error) {
        return error.description();
    }
    return "no error";
}

TEST_P(ItemMoverVolumesTest, AFolderArrivesWithEverythingInIt) {
    write(from("a/deep/file"), "x");
    write(from("a/empty file"), "");
    fs::create_directories(from("a/empty folder"));
    fs::create_symlink("nowhere", from("a/link"));
    const auto before = treeOf(from("a"));
    ItemMover().move(from("a"), to("b"));
    EXPECT_EQ(treeOf(to("b")), before);
    EXPECT_THAT(namesBesideBoth(), ::testing::ElementsAre("b"));
}

TEST_P(ItemMoverVolumesTest, AFolderWithASlashAtItsEndIsTheSame) {
    write(from("a/file"), "x");
    ItemMover().move(from("a").native() + "/", to("b").native() + "//");
    EXPECT_EQ(read(to("b/file")), "x");
    EXPECT_THAT(namesBesideBoth(), ::testing::ElementsAre("b"));
}

TEST_P(ItemMoverVolumesTest, DatesStayTheSameToTheNanosecond) {
    write(from("a/below/file"), "x");
    fs::create_symlink("nowhere", from("a/below/link"));
    ::mkfifo(from("a/below/fifo").c_str(), 0600);
    setDate(from("a/below/file"), 1000000001, 123456789);
    setDate(from("a/below/link"), 1000000002, 223456789);
    setDate(from("a/below/fifo"), 1000000003, 323456789);
    setDate(from("a/below"), 1000000004, 423456789);
    setDate(from("a"), 1000000005, 523456789);
    ItemMover().move(from("a"), to("a"));
    expectDates(to("a"), 1000000005, 523456789);
    expectDates(to("a/below"), 1000000004, 423456789);
    expectDates(to("a/below/fifo"), 1000000003, 323456789);
    expectDates(to("a/below/link"), 1000000002, 223456789);
    expectDates(to("a/below/file"), 1000000001, 123456789);
}

TEST_P(ItemMoverVolumesTest, ModesAreKept) {
    write(from("a/below/file"), "x");
    write(from("a/program"), "x");
    ::mkfifo(from("a/fifo").c_str(), 0600);
    ::chmod(from("a/below/file").c_str(), 0640);
    ::chmod(from("a/program").c_str(), 04751);
    ::chmod(from("a/fifo").c_str(), 0622);
    ::chmod(from("a/below").c_str(), 03771);
    ::chmod(from("a").c_str(), 0705);
    ItemMover().move(from("a"), to("a"));
    EXPECT_EQ(statusOf(to("a/below/file")).st_mode & 07777U, 0640U);
    EXPECT_EQ(statusOf(to("a/program")).st_mode & 07777U, 04751U);
    EXPECT_EQ(statusOf(to("a/fifo")).st_mode, static_cast<mode_t>(S_IFIFO | 0622));
    EXPECT_EQ(statusOf(to("a/below")).st_mode & 07777U, 03771U);
    EXPECT_EQ(statusOf(to("a")).st_mode & 07777U, 0705U);
}

TEST_P(ItemMoverVolumesTest, OwnersAreKept) {
    if (::getuid() != 0) {
        GTEST_SKIP() << "only root can give files away";
    }
    write(from("a/file"), "x");
    fs::create_symlink("nowhere", from("a/link"));
    for (const char* item : {"a", "a/file", "a/link"}) {
        ASSERT_EQ(::lchown(from(item).c_str(), 1234, 5678), 0);
    }
    ItemMover().move(from("a"), to("a"));
    for (const char* item : {"a", "a/file", "a/link"}) {
        EXPECT_EQ(statusOf(to(item)).st_uid, 1234U) << item;
        EXPECT_EQ(statusOf(to(item)).st_gid, 5678U) << item;
    }
}

TEST_P(ItemMoverVolumesTest, ExtendedAttributesAreKept) {
    write(from("a/below/file"), "x");
    setAttribute(from("a/below/file"), "of the file");
    setAttribute(from("a/below"), "of the folder");
    setAttribute(from("a"), "");
    ItemMover().move(from("a"), to("a"));
    EXPECT_EQ(attribute(to("a/below/file")), "of the file");
    EXPECT_EQ(attribute(to("a/below")), "of the folder");
    EXPECT_EQ(attribute(to("a")), "");
}

TEST_P(ItemMoverVolumesTest, HardLinksInTheTreeStayHardLinks) {
    write(from("a/one"), "x");
    fs::create_directories(from("a/below/deeper"));
    fs::create_hard_link(from("a/one"), from("a/below/deeper/two"));
    fs::create_hard_link(from("a/one"), from("a/three"));
    write(from("a/alone"), "x");
    ItemMover().move(from("a"), to("a"));
    EXPECT_TRUE(isSameItem(to("a/one"), to("a/below/deeper/two")));
    EXPECT_TRUE(isSameItem(to("a/one"), to("a/three")));
    EXPECT_EQ(statusOf(to("a/one")).st_nlink, 3U);
    EXPECT_FALSE(isSameItem(to("a/one"), to("a/alone")));
    EXPECT_EQ(read(to("a/below/deeper/two")), "x");
}

TEST_P(ItemMoverVolumesTest, HardLinksBetweenItemsThatOneMoverMovesStayHardLinks) {
    write(from("one"), "x");
    fs::create_directory(from("folder"));
    fs::create_hard_link(from("one"), from("folder/two"));
    fs::create_hard_link(from("one"), from("three"));
    ItemMover mover;
    mover.move(from("one"), to("renamed"));
    mover.move(from("folder"), to("folder"));
    mover.move(from("three"), to("three"));
    EXPECT_TRUE(isSameItem(to("renamed"), to("folder/two")));
    EXPECT_TRUE(isSameItem(to("renamed"), to("three")));
}

TEST_P(ItemMoverVolumesTest, AHardLinkWhoseFirstCopyWasReplacedIsCopied) {
    write(from("one"), "x");
    fs::create_hard_link(from("one"), from("two"));
    ItemMover mover;
    mover.move(from("one"), to("one"));
    write(to("another"), "y");
    fs::rename(to("another"), to("one"));
    mover.move(from("two"), to("two"));
    EXPECT_EQ(read(to("two")), "x");
    EXPECT_EQ(read(to("one")), "y");
}

TEST_P(ItemMoverVolumesTest, HolesStayHoles) {
    const off_t size = 64L << 20;
    {
        const FileHandle file(::open(from("a").c_str(), O_WRONLY | O_CREAT, 0600));
        ASSERT_EQ(::pwrite(file.descriptor(), "middle", 6, size / 2), 6);
        ASSERT_EQ(::ftruncate(file.descriptor(), size), 0);
    }
    ItemMover().move(from("a"), to("a"));
    EXPECT_EQ(statusOf(to("a")).st_size, size);
    EXPECT_LT(statusOf(to("a")).st_blocks * 512, 1 << 20);
    const std::string bytes = read(to("a"));
    EXPECT_EQ(bytes.find_first_not_of('\0'), static_cast<std::size_t>(size / 2));
    EXPECT_EQ(bytes.substr(static_cast<std::size_t>(size / 2), 7), std::string("middle\0", 7));
}

TEST_P(ItemMoverVolumesTest, ALinkArrivesAsALink) {
    write(from("kept/file"), "x");
    fs::create_directory_symlink(from("kept"), from("link"));
    ItemMover().move(from("link"), to("link"));
    EXPECT_EQ(fs::read_symlink(to("link")), from("kept"));
    EXPECT_EQ(read(from("kept/file")), "x");
    EXPECT_FALSE(itemOrLinkExists(from("link")));
}

TEST_P(ItemMoverVolumesTest, AFolderWithAFifoAndASocketIsMoved) {
    write(from("a/file"), "x");
    ::mkfifo(from("a/fifo").c_str(), 0600);
    const FileHandle socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = from("a/socket").string();
    ASSERT_LT(path.size(), sizeof address.sun_path);
    std::memcpy(address.sun_path, path.data(), path.size());
    ASSERT_EQ(
        ::bind(socket.descriptor(), reinterpret_cast<const sockaddr*>(&address), sizeof address),
        0);
    ItemMover().move(from("a"), to("a"));
    EXPECT_TRUE(fs::is_fifo(to("a/fifo")));
    EXPECT_TRUE(fs::is_socket(to("a/socket")));
    EXPECT_EQ(read(to("a/file")), "x");
    EXPECT_FALSE(itemOrLinkExists(from("a")));
}

TEST_P(ItemMoverVolumesTest, NothingIsReplaced) {
    write(from("a"), "new");
    write(to("b"), "old");
    fs::create_symlink("nowhere", to("dangling"));
    EXPECT_THROW(ItemMover().move(from("a"), to("b")), PlatformError);
    EXPECT_THROW(ItemMover().move(from("a"), to("dangling")), PlatformError);
    EXPECT_EQ(read(to("b")), "old");
    EXPECT_TRUE(fs::is_symlink(to("dangling")));
    EXPECT_EQ(read(from("a")), "new");
}

TEST_P(ItemMoverVolumesTest, AnUnreadableItemStaysAndIsNamed) {
    for (const fs::path& folder : {folder_.path(), other_.path()}) {
        fs::permissions(folder, fs::perms{0777});
    }
    EXPECT_TRUE(asUnprivilegedUser(from(""), [&] {
        write(from("a/below/closed"), "x");
        write(from("a/file"), "y");
        fs::permissions(from("a/below/closed"), fs::perms::none);
        const std::string failure = failureOf([&] { ItemMover().move(from("a"), to("a")); });
        fs::permissions(from("a/below/closed"), fs::perms{0600});
        return failure == "“a” couldn’t be moved: “below/closed”: permission denied" &&
               read(from("a/below/closed")) == "x" && read(from("a/file")) == "y" &&
               namesBesideBoth() == std::vector<std::string>{"a"};
    }));
}

TEST_P(ItemMoverVolumesTest, AnItemThatCouldNotBeRemovedAfterwardsStaysAndIsNamed) {
    for (const fs::path& folder : {folder_.path(), other_.path()}) {
        fs::permissions(folder, fs::perms{0777});
    }
    EXPECT_TRUE(asUnprivilegedUser(from(""), [&] {
        write(from("a/fixed/file"), "x");
        fs::permissions(from("a/fixed"), fs::perms{0555});
        const std::string failure = failureOf([&] { ItemMover().move(from("a"), to("a")); });
        return failure == "“a” couldn’t be moved: “fixed”: permission denied" &&
               read(from("a/fixed/file")) == "x" &&
               namesBesideBoth() == std::vector<std::string>{"a"};
    }));
}

// Renames as usual, and calls `first` before the copied `source` is set aside.
ExclusiveRename renamingAfter(const fs::path& source, const std::function<void()>& first) {
    return [=, calls = 0](const fs::path& from, const fs::path& to) mutable {
        // The first rename only finds that the destination is on another file system.
        if (from == source && ++calls == 2) {
            first();
        }
        return renameExclusively(from, to);
    };
}

void overwrite(const fs::path& file, const std::string& text) {
    const FileHandle opened(::open(file.c_str(), O_WRONLY | O_CLOEXEC));
    ASSERT_EQ(::pwrite(opened.descriptor(), text.data(), text.size(), 0),
              static_cast<ssize_t>(text.size()));
}

TEST_P(ItemMoverVolumesTest, WritesAfterTheCopyAreKept) {
    write(from("a/below/file"), "old");
    write(from("a/file"), "x");
    setDate(from("a/below/file"), 1000000001, 123456789);
    ItemMover mover(renamingAfter(from("a"), [this] { overwrite(from("a/below/file"), "new"); }));
    EXPECT_EQ(failureOf([&] { mover.move(from("a"), to("a")); }),
              "“a” couldn’t be moved: “below/file” changed while it was copied");
    EXPECT_EQ(read(from("a/below/file")), "new");
    EXPECT_THAT(namesBesideBoth(), ::testing::ElementsAre("a"));
    ItemMover().move(from("a"), to("a"));
    EXPECT_EQ(read(to("a/below/file")), "new");
}

TEST_P(ItemMoverVolumesTest, FilesAddedAfterTheCopyAreKept) {
    write(from("a/file"), "x");
    ItemMover mover(renamingAfter(from("a"), [this] { write(from("a/later"), "y"); }));
    EXPECT_EQ(failureOf([&] { mover.move(from("a"), to("a")); }),
              "“a” couldn’t be moved: “later” changed while it was copied");
    EXPECT_EQ(read(from("a/later")), "y");
    EXPECT_THAT(namesBesideBoth(), ::testing::ElementsAre("a"));
}

TEST_P(ItemMoverVolumesTest, AMovedFileThatChangedIsNamedOnce) {
    write(from("a"), "old");
    setDate(from("a"), 1000000001, 123456789);
    ItemMover mover(renamingAfter(from("a"), [this] { overwrite(from("a"), "new"); }));
    EXPECT_EQ(failureOf([&] { mover.move(from("a"), to("a")); }),
              "“a” couldn’t be moved: changed while it was copied");
    EXPECT_EQ(read(from("a")), "new");
}

// Otherwise a power failure could lose the item.
TEST_P(ItemMoverVolumesTest, TheNewNameIsFlushedBeforeTheOriginalIsRemoved) {
    write(from("a/file"), "x");
    const std::vector<long> calls = systemCallsOf([this] { ItemMover().move(from("a"), to("a")); });
    if (calls.empty()) {
        GTEST_SKIP() << "processes may not be traced here";
    }
    const auto arrival = std::find(calls.rbegin(), calls.rend(), SYS_renameat2).base();
    const auto removal = std::find(arrival, calls.end(), SYS_unlinkat);
    ASSERT_NE(removal, calls.end());
    EXPECT_NE(std::find(arrival, removal, SYS_syncfs), removal);
}

// A move that was interrupted after the original was set aside, which has changed since.
TEST_P(ItemMoverVolumesTest, AnOutdatedCopyDoesNotReplaceTheItem) {
    const std::string folder = ".quorvel-moving-3F2504E0-4F89-41D3-9A0C-0305E82C3301";
    write(from(folder) / "a", "new");
    write(to(folder) / "a", "old");
    setDate(to(folder) / "a", 1000000001, 123456789);
    EXPECT_FALSE(ItemMover().finish(from(folder), to(""), [](const auto& path) { return path; }));
    EXPECT_EQ(read(from("a")), "new");
    EXPECT_THAT(namesBesideBoth(), ::testing::ElementsAre("a"));
}

TEST_P(ItemMoverVolumesTest, AFullDiskIsReportedAndLeavesTheItemUnchanged) {
    write(from("a/file"), std::string(100000, 'x'));
    fs::create_directory(to("small"));
    const auto result = onSmallDisk(to("small"), "size=64k", [&]() -> std::string {
        std::string failure = failureOf([&] { ItemMover().move(from("a"), to("small/a")); });
        if (failure != "“a” couldn’t be moved: “file”: no space left on device") {
            return failure;
        }
        const bool whole = read(from("a/file")).size() == 100000;
        return whole && directoryEntries(to("small"))->empty() ? "" : "not as it was";
    });
    if (!result) {
        GTEST_SKIP() << "no file system may be mounted here";
    }
    EXPECT_EQ(*result, "");
}

TEST_P(ItemMoverVolumesTest, AnItemThatContainsAMountStays) {
    write(from("kept/foreign"), "y");
    write(from("kept file"), "z");
    write(from("a/file"), "x");
    fs::create_directory(from("b"));
    fs::create_directory(from("a/folder"));
    write(from("b/file"), "x");
    const auto problem = inPrivateMounts([&]() -> std::string {
        bindMount(from("kept"), from("a/folder"));
        bindMount(from("kept file"), from("b/file"));
        return failureOf([&] { ItemMover().move(from("a"), to("a")); }) + "\n" +
               failureOf([&] { ItemMover().move(from("b"), to("b")); });
    });
    if (!problem) {
        GTEST_SKIP() << "no file system may be mounted here";
    }
    EXPECT_EQ(*problem, "“a” couldn’t be moved: “folder” is on another file system\n"
                        "“b” couldn’t be moved: “file” is on another file system");
    EXPECT_EQ(read(from("kept/foreign")), "y");
    EXPECT_EQ(read(from("kept file")), "z");
    EXPECT_THAT(namesBesideBoth(), ::testing::UnorderedElementsAre("kept", "kept file", "a", "b"));
}

TEST_P(ItemMoverVolumesTest, AnItemThatContainsAnotherFileSystemStays) {
    write(from("a/file"), "x");
    fs::create_directory(from("a/disk"));
    const auto result = onSmallDisk(from("a/disk"), "size=64k", [&]() -> std::string {
        write(from("a/disk/foreign"), "y");
        std::string failure = failureOf([&] { ItemMover().move(from("a"), to("a")); });
        if (failure != "“a” couldn’t be moved: “disk” is on another file system") {
            return failure;
        }
        return read(from("a/disk/foreign")) == "y" && !itemOrLinkExists(to("a")) ? "" : "it moved";
    });
    if (!result) {
        GTEST_SKIP() << "no file system may be mounted here";
    }
    EXPECT_EQ(*result, "");
}

} // namespace
} // namespace quorvel
