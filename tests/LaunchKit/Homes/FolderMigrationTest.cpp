#include "LaunchKit/InstanceLauncher.h"
#include "Platform/files/FileHandle.h"

#include "Platform/files/FileSystem.h"
#include "tests/support/EveryStep.h"
#include "tests/support/OtherVolume.h"
#include "tests/support/UnprivilegedUser.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;
using Migration = InstanceLauncher::Migration;
using Tree = std::map<std::string, std::string>;

std::vector<std::string> reasonsOf(const Migration& migration) {
    std::vector<std::string> reasons;
    for (const auto& item : migration.unmoved) {
        reasons.push_back(item.reason);
    }
    return reasons;
}

// The clone's home and the user's on one file system.
class FolderMigrationTest : public ::testing::Test {
protected:
    [[nodiscard]] fs::path inClone(std::string_view name) const { return folder_ / "clone" / name; }
    [[nodiscard]] fs::path inReal(std::string_view name) const { return folder_ / "real" / name; }

    [[nodiscard]] Migration migrate() const {
        return InstanceLauncher::migrateSharedUserFolders(folder_ / "clone", folder_ / "real");
    }

    TemporaryFolder folder_;
};

TEST_F(FolderMigrationTest, NothingIsReportedIfEverythingWasMoved) {
    write(inClone("Documents/a"), "a");
    fs::create_directories(inClone("Desktop"));
    write(inClone("Downloads"), "a file instead of a folder");
    EXPECT_THAT(migrate().unmoved, ::testing::IsEmpty());
}

TEST_F(FolderMigrationTest, EveryItemThatStaysIsNamedWithItsReason) {
    write(inReal("Downloads"), "a file");
    write(inClone("Downloads/b"), "b");
    fs::create_directories(inReal("Documents"));
    fs::create_symlink("nowhere", inReal("Documents/a"));
    write(inClone("Documents/a"), "a");
    write(inClone("Documents/fine"), "f");
    const Migration migration = migrate();
    EXPECT_THAT(migration.unmoved,
                ::testing::ElementsAre(
                    InstanceLauncher::UnmovedItem{inClone("Downloads/b"),
                                                  "“b” couldn’t be moved: not a directory"},
                    InstanceLauncher::UnmovedItem{inClone("Documents/a"),
                                                  "“a” couldn’t be moved: file exists"}));
    EXPECT_EQ(migration.moved, (std::map<std::string, int>{{"Downloads", 0}, {"Documents", 1}}));
}

TEST_F(FolderMigrationTest, AFolderThatCantBeReadIsNamed) {
    EXPECT_TRUE(asUnprivilegedUser(folder_.path(), [&] {
        write(inClone("Documents/a"), "x");
        fs::permissions(inClone("Documents"), fs::perms::none);
        const Migration migration = migrate();
        fs::permissions(inClone("Documents"), fs::perms{0700});
        return reasonsOf(migration) ==
               std::vector<std::string>{"“Documents” couldn’t be read: permission denied"};
    }));
}

TEST_F(FolderMigrationTest, JunkThatCantBeRemovedIsNamed) {
    EXPECT_TRUE(asUnprivilegedUser(folder_.path(), [&] {
        write(inClone("Documents/.DS_Store"), "x");
        fs::permissions(inClone("Documents"), fs::perms{0555});
        return reasonsOf(migrate()).size() == 1;
    }));
}

TEST_F(FolderMigrationTest, AFolderThatCantMakeWayForALinkIsNamed) {
    EXPECT_TRUE(asUnprivilegedUser(folder_.path(), [&] {
        write(inClone("Documents/a"), "x");
        fs::create_directories(inReal("Documents"));
        fs::permissions(folder_ / "clone", fs::perms{0555});
        const Migration migration = migrate();
        fs::permissions(folder_ / "clone", fs::perms{0755});
        return read(inReal("Documents/a")) == "x" &&
               reasonsOf(migration) ==
                   std::vector<std::string>{"“Documents” couldn’t be linked: it can’t be removed"};
    }));
}

// The clone's home on one file system and the user's on another.
class FolderMigrationTestAcrossVolumes : public ::testing::Test {
protected:
    void SetUp() override {
        if (!other_.exists()) {
            GTEST_SKIP() << "there is no second file system here";
        }
    }

    [[nodiscard]] fs::path clone() const { return folder_ / "clone"; }
    [[nodiscard]] fs::path real() const { return other_ / "real"; }

    [[nodiscard]] Migration migrate() const {
        return InstanceLauncher::migrateSharedUserFolders(clone(), real());
    }

    TemporaryFolder folder_;
    OtherVolume other_{folder_.path()};
};

TEST_F(FolderMigrationTestAcrossVolumes, WhatCantBeCopiedStaysAndTheRestMoves) {
    fs::permissions(other_.path(), fs::perms{0777});
    EXPECT_TRUE(asUnprivilegedUser(folder_.path(), [&] {
        write(clone() / "Documents/folder/closed", "x");
        write(clone() / "Documents/fine", "f");
        fs::permissions(clone() / "Documents/folder/closed", fs::perms::none);
        const Migration migration = migrate();
        const bool reported =
            reasonsOf(migration) ==
            std::vector<std::string>{"“folder” couldn’t be moved: “closed”: permission denied"};
        return reported && migration.moved.at("Documents") == 1 &&
               treeOf(real()) == Tree{{"Documents", "<folder>"}, {"Documents/fine", "f"}} &&
               fs::is_directory(fs::symlink_status(clone() / "Documents"));
    }));
}

TEST_F(FolderMigrationTestAcrossVolumes, HardLinksBetweenTheFoldersStayHardLinks) {
    write(clone() / "Documents/a", "x");
    fs::create_directories(clone() / "Desktop");
    fs::create_hard_link(clone() / "Documents/a", clone() / "Desktop/b");
    EXPECT_THAT(migrate().unmoved, ::testing::IsEmpty());
    EXPECT_TRUE(isSameItem(real() / "Documents/a", real() / "Desktop/b"));
}

// Killed at any moment, a migration loses nothing, and running it again makes no second copy.
TEST_F(FolderMigrationTestAcrossVolumes, CutOffAtAnyMomentItIsFinishedByTheNextOne) {
    const Tree expected{{"Documents", "<folder>"},    {"Documents/a.txt", "taken"},
                        {"Documents/a (1).txt", "a"}, {"Documents/folder", "<folder>"},
                        {"Documents/folder/b", "b"},  {"Documents/folder/c", "-> b"}};
    int moments = 0;
    Kill kill = Kill::done;
    for (; kill == Kill::done; ++moments) {
        fs::remove_all(clone());
        fs::remove_all(real());
        write(real() / "Documents/a.txt", "taken");
        write(clone() / "Documents/a.txt", "a");
        write(clone() / "Documents/folder/b", "b");
        fs::create_symlink("b", clone() / "Documents/folder/c");
        kill = killedBefore(moments, [&] { (void)migrate(); });
        if (kill == Kill::notPermitted) {
            GTEST_SKIP() << "processes may not be traced here";
        }
        const Migration again = migrate();
        ASSERT_THAT(reasonsOf(again), ::testing::IsEmpty()) << "killed before call " << moments;
        ASSERT_EQ(treeOf(real()), expected) << "killed before call " << moments;
        ASSERT_EQ(treeOf(clone()), (Tree{{"Documents", "-> " + (real() / "Documents").string()}}))
            << "killed before call " << moments;
    }
    EXPECT_GT(moments, 50);
}

// The same with the user's folders somewhere else afterwards: what was set aside is restored.
TEST_F(FolderMigrationTestAcrossVolumes, CutOffAtAnyMomentNothingIsLostWhenTheFoldersAreElsewhere) {
    int moments = 0;
    Kill kill = Kill::done;
    for (; kill == Kill::done; ++moments) {
        fs::remove_all(clone());
        fs::remove_all(real());
        fs::remove_all(other_ / "elsewhere");
        write(clone() / "Documents/folder/b", "b");
        kill = killedBefore(moments, [&] { (void)migrate(); });
        if (kill == Kill::notPermitted) {
            GTEST_SKIP() << "processes may not be traced here";
        }
        (void)InstanceLauncher::migrateSharedUserFolders(clone(), other_ / "elsewhere");
        ASSERT_TRUE(read(other_ / "elsewhere/Documents/folder/b") == "b" ||
                    read(real() / "Documents/folder/b") == "b")
            << "killed before call " << moments;
    }
}

TEST_F(FolderMigrationTestAcrossVolumes, AMoveThatIsStillUnderWayIsLeftAlone) {
    const fs::path leftover =
        clone() / "Documents/.quorvel-moving-3F2504E0-4F89-41D3-9A0C-0305E82C3301";
    fs::create_directories(leftover);
    const FileHandle held(::open(leftover.c_str(), O_RDONLY | O_DIRECTORY));
    ASSERT_EQ(::flock(held.descriptor(), LOCK_EX), 0);
    EXPECT_EQ(migrate().unmoved.size(), 1U);
    EXPECT_TRUE(fs::exists(leftover));
}

TEST_F(FolderMigrationTestAcrossVolumes, AFolderWithMerelySuchANameIsMovedLikeAnyOther) {
    write(clone() / "Documents/.quorvel-moving-van/file", "x");
    EXPECT_EQ(migrate().moved.at("Documents"), 1);
    EXPECT_EQ(read(real() / "Documents/.quorvel-moving-van/file"), "x");
}

} // namespace
} // namespace quorvel
