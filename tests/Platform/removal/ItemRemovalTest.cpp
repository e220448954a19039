#include "Platform/removal/ItemRemoval.h"

#include "Platform/files/FileHandle.h"
#include "Platform/files/PlatformError.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/UnprivilegedUser.h"

#include <atomic>
#include <cstdio>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <thread>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

class ItemRemovalTest : public ::testing::Test {
protected:
    [[nodiscard]] fs::path at(std::string_view name) const { return folder_ / name; }

    void writeMany(const std::string& folder, int count) const {
        for (int number = 0; number < count; ++number) {
            write(at(folder) / std::to_string(number), "x");
        }
    }

    TemporaryFolder folder_;
};

TEST_F(ItemRemovalTest, IsAbsentIfThereIsNoItem) {
    write(at("file"), "x");
    EXPECT_FALSE(ItemRemoval::of(at("none")));
    EXPECT_FALSE(ItemRemoval::of(at("none/deeper")));
    EXPECT_FALSE(ItemRemoval::of(at("file/deeper")));
}

TEST_F(ItemRemovalTest, APathWithoutANameIsRefused) {
    fs::create_directories(at("a/b"));
    for (const char* path : {"a/b/.", "a/b/..", "a/b/./"}) {
        EXPECT_THROW((void)ItemRemoval::of(at(path)), PlatformError) << path;
    }
    EXPECT_TRUE(fs::exists(at("a/b")));
}

TEST_F(ItemRemovalTest, CountsTheRemovedItems) {
    writeMany("tree/sub", 1500);
    write(at("tree/file"), "x");
    const RemovalReport report = ItemRemoval::of(at("tree"))->remove();
    EXPECT_EQ(report.removed, 1503U);
    EXPECT_EQ(report.remaining, 0U);
    EXPECT_TRUE(report.isComplete());
    EXPECT_FALSE(report.failure);
    EXPECT_FALSE(fs::exists(at("tree")));
}

TEST_F(ItemRemovalTest, ContinuesAfterAFailureAndCountsBoth) {
    EXPECT_TRUE(asUnprivilegedUser(folder_.path(), [&] {
        writeMany("tree/open", 20);
        write(at("tree/closed/kept"), "x");
        fs::permissions(at("tree/closed"), fs::perms{0555});
        const RemovalReport report = ItemRemoval::of(at("tree"))->remove();
        // What remains: the file, its folder and the root.
        return report.removed == 21 && report.remaining == 3 && report.failure &&
               report.failure->path() == at("tree/closed/kept") &&
               report.failure->code() == std::errc::permission_denied &&
               read(at("tree/closed/kept")) == "x" && !fs::exists(at("tree/open"));
    }));
}

TEST_F(ItemRemovalTest, AnUnreadableFolderIsRemovedOnlyIfEmpty) {
    EXPECT_TRUE(asUnprivilegedUser(folder_.path(), [&] {
        fs::create_directories(at("tree/empty"));
        fs::permissions(at("tree/empty"), fs::perms{});
        const bool emptyGoes = ItemRemoval::of(at("tree"))->remove().isComplete();
        write(at("tree/full/file"), "x");
        fs::permissions(at("tree/full"), fs::perms{0300});
        const RemovalReport report = ItemRemoval::of(at("tree"))->remove();
        return emptyGoes && report.removed == 0 && report.remaining == 2 &&
               report.failure->code() == std::errc::permission_denied &&
               report.failure->path() == at("tree/full");
    }));
}

TEST_F(ItemRemovalTest, KeepsOneItemAndTheFoldersOnTheWayToIt) {
    for (const char* file : {"tree/Contents/Resources/kept.json", "tree/Contents/Resources/icon",
                             "tree/Contents/Resources/kept.json.old", "tree/Contents/MacOS/runner",
                             "tree/Contents/Info", "tree/kept.json"}) {
        write(at(file), "x");
    }
    const auto removal = ItemRemoval::of(at("tree"));
    const RemovalReport report = removal->removeAllBut("Contents/Resources/kept.json");
    EXPECT_TRUE(report.isComplete());
    EXPECT_EQ(report.removed, 6U);
    const std::map<std::string, std::string> left{{"Contents", "<folder>"},
                                                  {"Contents/Resources", "<folder>"},
                                                  {"Contents/Resources/kept.json", "x"}};
    EXPECT_EQ(treeOf(at("tree")), left);
    EXPECT_TRUE(removal->remove().isComplete());
    EXPECT_FALSE(fs::exists(at("tree")));
}

TEST_F(ItemRemovalTest, AReplacementOfTheItemStays) {
    write(at("tree/file"), "x");
    write(at("link"), "x");
    const auto folder = ItemRemoval::of(at("tree"));
    const auto file = ItemRemoval::of(at("link"));
    fs::rename(at("tree"), at("moved"));
    fs::create_directory(at("tree"));
    fs::rename(at("link"), at("old"));
    write(at("link"), "another");
    EXPECT_FALSE(folder->remove().isComplete());
    EXPECT_FALSE(file->remove().isComplete());
    EXPECT_TRUE(fs::exists(at("tree")));
    EXPECT_EQ(read(at("link")), "another");
}

TEST_F(ItemRemovalTest, RefusesAnItemInAReadOnlyFolder) {
    EXPECT_TRUE(asUnprivilegedUser(folder_.path(), [&] {
        const auto isRefused = [&](const char* path, std::string_view kept) {
            try {
                ItemRemoval::of(at(path))->refuseUnchangeable(kept);
            } catch (const PlatformError& error) {
                return error.code() == std::errc::permission_denied;
            }
            return false;
        };
        write(at("closed/tree/a/b/kept"), "x");
        write(at("open/tree/a/b/kept"), "x");
        const bool open = !isRefused("open/tree", "a/b/kept") &&
                          !isRefused("open/tree", "a/none/kept") && !isRefused("open/tree", "");
        fs::permissions(at("closed"), fs::perms{0555});
        const bool around = isRefused("closed/tree", "");
        fs::permissions(at("open/tree/a/b"), fs::perms{0555});
        const bool within = isRefused("open/tree", "a/b/kept") && !isRefused("open/tree", "");
        fs::permissions(at("open/tree/a/b"), fs::perms{0});
        const bool unreadable = isRefused("open/tree", "a/b/kept");
        return open && around && within && unreadable;
    }));
}

TEST_F(ItemRemovalTest, RefusesAnItemThatOnlyItsOwnerMayRemove) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can give items to several users";
    }
    write(at("shared/tree/file"), "x");
    fs::permissions(folder_.path(), fs::perms{0755});
    fs::permissions(at("shared"), fs::perms{01777});
    EXPECT_TRUE(asUnprivilegedUser(at("shared/tree"), [&] {
        try {
            ItemRemoval::of(at("shared/tree"))->refuseUnchangeable();
        } catch (const PlatformError&) {
            return false; // it would be this user's own
        }
        return true;
    }));
    ASSERT_EQ(::chown(at("shared/tree").c_str(), 4242, 4242), 0);
    EXPECT_TRUE(asUnprivilegedUser(at("shared/tree/file"), [&] {
        try {
            ItemRemoval::of(at("shared/tree"))->refuseUnchangeable();
        } catch (const PlatformError& error) {
            return error.code() == std::errc::operation_not_permitted;
        }
        return false;
    }));
}

// One thread repeatedly exchanges a folder and a link to a foreign folder while another removes.
// The foreign files have the same names, and must all exist at the end.
TEST_F(ItemRemovalTest, ALinkSwappedInMeanwhileLeadsNowhere) {
    constexpr int files = 20;
    constexpr int rounds = 50;
    writeMany("foreign/deep", files);
    int swaps = 0;
    for (int round = 0; round < rounds; ++round) {
        writeMany("tree/sub/deep", files);
        fs::remove_all(at("spare"));
        fs::create_directory_symlink(at("foreign"), at("spare"));
        std::atomic<bool> done = false;
        std::thread swapping([&] {
            while (!done) {
                swaps += ::renameat2(AT_FDCWD, at("tree/sub").c_str(), AT_FDCWD,
                                     at("spare").c_str(), RENAME_EXCHANGE) == 0
                             ? 1
                             : 0;
            }
        });
        (void)ItemRemoval::of(at("tree"))->remove();
        done = true;
        swapping.join();
        ASSERT_EQ(std::distance(fs::directory_iterator(at("foreign/deep")), {}), files) << round;
        fs::remove_all(at("tree"));
    }
    EXPECT_GT(swaps, rounds);
}

TEST_F(ItemRemovalTest, AFileCreatedAfterTheListingIsRemovedToo) {
    bool written = false;
    for (int attempt = 0; attempt < 10 && !written; ++attempt) {
        writeMany("tree/sub/many", 1000);
        std::atomic<bool> done = false;
        std::thread writing([&] {
            // The removal is below the folder, so the folder has been listed already.
            while (!done && fs::exists(at("tree/sub/many/0"))) {
            }
            written = FileHandle(::open(at("tree/sub/late").c_str(), O_CREAT | O_WRONLY, 0600))
                          .descriptor() >= 0;
        });
        const RemovalReport report = ItemRemoval::of(at("tree"))->remove();
        done = true;
        writing.join();
        EXPECT_TRUE(report.isComplete());
        EXPECT_FALSE(fs::exists(at("tree")));
    }
    EXPECT_TRUE(written) << "the file never came in time";
}

} // namespace
} // namespace quorvel
