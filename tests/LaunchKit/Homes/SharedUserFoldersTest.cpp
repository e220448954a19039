#include "LaunchKit/InstanceLauncher.h"

#include "tests/support/TemporaryHome.h"
#include "tests/support/UnprivilegedUser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace quorvel {
namespace {

using namespace testing;
using namespace std::string_literals;
namespace fs = std::filesystem;
using Counts = std::map<std::string, int>;

class SharedUserFoldersTest : public ::testing::Test {
protected:
    [[nodiscard]] fs::path at(std::string_view name) const { return folder_ / name; }
    [[nodiscard]] std::string clone() const { return folder_ / "clone"; }
    [[nodiscard]] std::string real() const { return folder_ / "real"; }
    [[nodiscard]] fs::path inClone(std::string_view name) const { return clone() / fs::path(name); }
    [[nodiscard]] fs::path inReal(std::string_view name) const { return real() / fs::path(name); }

    void makeRealFolders() const {
        for (const auto name : InstanceLauncher::sharedUserFolders) {
            fs::create_directories(inReal(name));
        }
    }

    Counts migrate() const {
        return InstanceLauncher::migrateSharedUserFolders(clone(), real()).moved;
    }

    static void link(const fs::path& from, const fs::path& to) {
        InstanceLauncher::linkIfSafe(from, to);
    }

    static bool isLink(const fs::path& item, const fs::path& to) {
        return fs::is_symlink(item) && fs::read_symlink(item) == to;
    }

    TemporaryFolder folder_;
};

TEST_F(SharedUserFoldersTest, AreDownloadsDocumentsAndDesktop) {
    EXPECT_THAT(InstanceLauncher::sharedUserFolders,
                ::testing::ElementsAre("Downloads", "Documents", "Desktop"));
}

TEST_F(SharedUserFoldersTest, NoLinkIsMadeToWhatIsMissing) {
    link(at("a/link"), at("none"));
    EXPECT_FALSE(fs::exists(at("a")));
}

TEST_F(SharedUserFoldersTest, ALinkIsMadeWithTheFoldersAboveIt) {
    fs::create_directory(at("target"));
    link(at("a/b/link"), at("target"));
    EXPECT_TRUE(isLink(at("a/b/link"), at("target")));
}

TEST_F(SharedUserFoldersTest, ALinkThatIsThereStaysWhereverItPoints) {
    fs::create_directory(at("target"));
    fs::create_symlink("nowhere", at("dangling"));
    fs::create_symlink(folder_.path(), at("other"));
    link(at("dangling"), at("target"));
    link(at("other"), at("target"));
    EXPECT_TRUE(isLink(at("dangling"), "nowhere"));
    EXPECT_TRUE(isLink(at("other"), folder_.path()));
}

TEST_F(SharedUserFoldersTest, AFolderWithContentIsNeverReplaced) {
    fs::create_directory(at("target"));
    write(at("full/.DS_Store"), "");
    link(at("full"), at("target"));
    EXPECT_TRUE(fs::is_directory(fs::symlink_status(at("full"))));
    EXPECT_TRUE(fs::exists(at("full/.DS_Store")));
}

TEST_F(SharedUserFoldersTest, AnEmptyFolderAndAPlainFileAreReplaced) {
    fs::create_directory(at("target"));
    fs::create_directory(at("empty"));
    write(at("file"), "x");
    link(at("empty"), at("target"));
    link(at("file"), at("target"));
    EXPECT_TRUE(isLink(at("empty"), at("target")));
    EXPECT_TRUE(isLink(at("file"), at("target")));
}

TEST_F(SharedUserFoldersTest, AFolderThatCantBeListedStays) {
    EXPECT_TRUE(asUnprivilegedUser(folder_.path(), [&] {
        fs::create_directory(at("target"));
        write(at("closed/file"), "x");
        fs::permissions(at("closed"), fs::perms::none);
        link(at("closed"), at("target"));
        fs::permissions(at("closed"), fs::perms{0700});
        return read(at("closed/file")) == "x";
    }));
}

TEST_F(SharedUserFoldersTest, ALinkThatCantBeMadeIsNotAnError) {
    fs::create_directory(at("target"));
    write(at("file"), "x");
    link(at("file/below"), at("target"));
    link(at(std::string(300, 'n')), at("target"));
    EXPECT_EQ(read(at("file")), "x");
}

TEST_F(SharedUserFoldersTest, APathWithANulIsNotLinked) {
    fs::create_directory(at("target"));
    InstanceLauncher::linkIfSafe(at("short").string() + "\0/link"s, at("target"));
    InstanceLauncher::linkIfSafe(at("link"), at("target").string() + "\0x"s);
    EXPECT_FALSE(fs::is_symlink(at("short")));
    EXPECT_FALSE(fs::is_symlink(at("link")));
}

TEST_F(SharedUserFoldersTest, AFolderIsNeverReplacedByALinkToItself) {
    fs::create_directory(at("target"));
    fs::create_directory_symlink(folder_.path(), at("again"));
    link(at("target"), at("target"));
    link(at("again/target"), at("target"));
    EXPECT_TRUE(fs::is_directory(fs::symlink_status(at("target"))));
}

TEST_F(SharedUserFoldersTest, SettingUpLinksWhatTheUserHas) {
    const TemporaryHome home;
    fs::create_directory(home / "Downloads");
    fs::create_directory(home / "Documents");
    write(inClone("Documents/own"), "x");
    InstanceLauncher::ensureSharedUserFolders(clone());
    EXPECT_TRUE(isLink(inClone("Downloads"), home / "Downloads"));
    EXPECT_EQ(read(inClone("Documents/own")), "x");
    EXPECT_FALSE(fs::is_symlink(inClone("Desktop"))) << "the user has none";
}

TEST_F(SharedUserFoldersTest, SettingUpForTheRealHomeItselfChangesNothing) {
    const TemporaryHome home;
    fs::create_directory(home / "Downloads");
    write(home / "Documents/file", "x");
    const auto before = treeOf(home.path());
    InstanceLauncher::ensureSharedUserFolders(home.path());
    InstanceLauncher::ensureSharedUserFolders(home.path().string() + "/.");
    EXPECT_EQ(treeOf(home.path()), before);
}

TEST_F(SharedUserFoldersTest, MigrationIsNeededForAnythingThatIsNotALink) {
    EXPECT_FALSE(InstanceLauncher::needsSharedFolderMigration(clone()));
    fs::create_directories(inClone("Desktop"));
    EXPECT_TRUE(InstanceLauncher::needsSharedFolderMigration(clone())) << "even when it is empty";
    fs::remove(inClone("Desktop"));
    fs::create_symlink("nowhere", inClone("Desktop"));
    EXPECT_FALSE(InstanceLauncher::needsSharedFolderMigration(clone()));
    write(inClone("Documents"), "a file");
    EXPECT_TRUE(InstanceLauncher::needsSharedFolderMigration(clone()));
}

TEST_F(SharedUserFoldersTest, MigrationMovesEverythingAndLinks) {
    makeRealFolders();
    write(inClone("Downloads/a.txt"), "a");
    write(inClone("Downloads/folder/b"), "b");
    write(inClone("Downloads/.hidden"), "h");
    EXPECT_EQ(migrate(), (Counts{{"Downloads", 3}}));
    EXPECT_EQ(read(inReal("Downloads/a.txt")), "a");
    EXPECT_EQ(read(inReal("Downloads/folder/b")), "b");
    EXPECT_EQ(read(inReal("Downloads/.hidden")), "h");
    for (const auto name : InstanceLauncher::sharedUserFolders) {
        EXPECT_TRUE(isLink(inClone(name), inReal(name))) << name;
    }
    EXPECT_FALSE(InstanceLauncher::needsSharedFolderMigration(clone()));
    EXPECT_EQ(migrate(), Counts{});
}

TEST_F(SharedUserFoldersTest, MigrationMakesAFolderThatTheUserLacks) {
    fs::create_directory(at("real"));
    write(inClone("Documents/a"), "a");
    EXPECT_EQ(migrate(), (Counts{{"Documents", 1}}));
    EXPECT_EQ(read(inReal("Documents/a")), "a");
    EXPECT_FALSE(fs::exists(inReal("Desktop"))) << "nothing was to be moved there";
    EXPECT_FALSE(fs::is_symlink(inClone("Desktop")));
}

TEST_F(SharedUserFoldersTest, AFolderWithOnlyDsStoreIsEmptiedAndLinked) {
    makeRealFolders();
    write(inClone("Downloads/.DS_Store"), "junk");
    EXPECT_EQ(migrate(), (Counts{{"Downloads", 0}}));
    EXPECT_TRUE(isLink(inClone("Downloads"), inReal("Downloads")));
    EXPECT_FALSE(fs::exists(inReal("Downloads/.DS_Store")));
}

TEST_F(SharedUserFoldersTest, OnlyExactlyDsStoreIsNotMoved) {
    makeRealFolders();
    for (const char* name : {".DS_Store", ".ds_store", ".DS_Store ", ".DS_Stor", "x.DS_Store",
                             "DS_Store", ".DS_Store.txt", "folder/.DS_Store"}) {
        write(inClone("Downloads") / name, "x");
    }
    EXPECT_EQ(migrate(), (Counts{{"Downloads", 7}}));
    EXPECT_FALSE(fs::exists(inReal("Downloads/.DS_Store")));
    for (const char* name : {".ds_store", ".DS_Store ", ".DS_Stor", "x.DS_Store", "DS_Store",
                             ".DS_Store.txt", "folder/.DS_Store"}) {
        EXPECT_TRUE(fs::exists(inReal("Downloads") / name)) << name;
    }
}

TEST_F(SharedUserFoldersTest, NamesThatAreTakenGetTheNextNumber) {
    for (const char* name : {"Documents/a.txt", "Documents/a (1).txt", "Documents/notes",
                             "Documents/x.tar.gz", "Documents/.rc", "Documents/end."}) {
        write(inReal(name), "old");
    }
    for (const char* name : {"Documents/a.txt", "Documents/notes", "Documents/x.tar.gz",
                             "Documents/.rc", "Documents/end."}) {
        write(inClone(name), "new");
    }
    EXPECT_EQ(migrate().at("Documents"), 5);
    EXPECT_EQ(read(inReal("Documents/a (2).txt")), "new");
    EXPECT_EQ(read(inReal("Documents/notes (1)")), "new");
    EXPECT_EQ(read(inReal("Documents/x.tar (1).gz")), "new");
    EXPECT_EQ(read(inReal("Documents/.rc (1)")), "new");
    EXPECT_EQ(read(inReal("Documents/end. (1)")), "new");
    EXPECT_EQ(read(inReal("Documents/a.txt")), "old");
    EXPECT_EQ(read(inReal("Documents/a (1).txt")), "old");
}

TEST_F(SharedUserFoldersTest, NamesOfAnyKindAreMoved) {
    makeRealFolders();
    for (const char* name : {"line\nbreak", "quote\"'", "no text \xFF", "<b>", "..."}) {
        write(inClone("Desktop") / name, name);
    }
    EXPECT_EQ(migrate().at("Desktop"), 5);
    EXPECT_EQ(read(inReal("Desktop") / "no text \xFF"), "no text \xFF");
}

TEST_F(SharedUserFoldersTest, WhatWouldReplaceADanglingLinkStaysWhereItIs) {
    fs::create_directories(inReal("Documents"));
    fs::create_symlink("nowhere", inReal("Documents/a"));
    write(inClone("Documents/a"), "mine");
    write(inClone("Documents/b"), "moved");
    EXPECT_EQ(migrate(), (Counts{{"Documents", 1}}));
    EXPECT_EQ(read(inClone("Documents/a")), "mine");
    EXPECT_TRUE(fs::is_symlink(inReal("Documents/a")));
    EXPECT_EQ(read(inReal("Documents/b")), "moved");
    EXPECT_TRUE(fs::is_directory(fs::symlink_status(inClone("Documents")))) << "not linked";
}

TEST_F(SharedUserFoldersTest, ALinkAmongTheFilesIsMovedAsALink) {
    makeRealFolders();
    write(at("kept/file"), "x");
    fs::create_directories(inClone("Desktop"));
    fs::create_directory_symlink(at("kept"), inClone("Desktop/link"));
    EXPECT_EQ(migrate().at("Desktop"), 1);
    EXPECT_TRUE(isLink(inReal("Desktop/link"), at("kept")));
    EXPECT_EQ(read(at("kept/file")), "x");
}

TEST_F(SharedUserFoldersTest, AFolderThatIsALinkAlreadyIsPassedOver) {
    makeRealFolders();
    write(at("elsewhere/file"), "x");
    write(at("elsewhere/.DS_Store"), "x");
    fs::create_directory(at("clone"));
    fs::create_directory_symlink(at("elsewhere"), inClone("Downloads"));
    const auto before = treeOf(at("elsewhere"));
    EXPECT_EQ(migrate(), Counts{});
    EXPECT_TRUE(isLink(inClone("Downloads"), at("elsewhere")));
    EXPECT_EQ(treeOf(at("elsewhere")), before) << "what a link leads to is not the clone's own";
    EXPECT_TRUE(fs::is_empty(inReal("Downloads")));
}

TEST_F(SharedUserFoldersTest, APlainFileInsteadOfAFolderIsReplacedByTheLink) {
    makeRealFolders();
    write(inClone("Documents"), "a file");
    EXPECT_EQ(migrate(), (Counts{{"Documents", 0}}));
    EXPECT_TRUE(isLink(inClone("Documents"), inReal("Documents")));
}

TEST_F(SharedUserFoldersTest, MigratingTheRealHomeIntoItselfLosesNothing) {
    makeRealFolders();
    write(inReal("Documents/a"), "x");
    write(inReal("Documents/.DS_Store"), "kept too");
    fs::create_directory_symlink(at("real"), at("again"));
    const auto before = treeOf(real());
    for (const std::string& home :
         {real(), real() + "/", real() + "/.", at("again").string(), real() + "/Documents/.."}) {
        EXPECT_EQ(InstanceLauncher::migrateSharedUserFolders(home, real()).moved, Counts{}) << home;
        EXPECT_EQ(treeOf(real()), before) << home;
    }
}

TEST_F(SharedUserFoldersTest, MigratingIntoAFolderOfItsOwnLosesNothing) {
    write(inClone("Documents/inner/file"), "x");
    EXPECT_EQ(InstanceLauncher::migrateSharedUserFolders(clone(), inClone("Documents/inner")).moved,
              (Counts{{"Documents", 0}}));
    EXPECT_EQ(read(inClone("Documents/inner/file")), "x");
}

TEST_F(SharedUserFoldersTest, WhenTheRealFolderIsAFileNothingIsLost) {
    write(inReal("Documents"), "a file");
    write(inClone("Documents/a"), "x");
    EXPECT_EQ(migrate().at("Documents"), 0);
    EXPECT_EQ(read(inClone("Documents/a")), "x");
    EXPECT_EQ(read(inReal("Documents")), "a file");
}

TEST_F(SharedUserFoldersTest, WhatMayNotBeMovedStays) {
    EXPECT_TRUE(asUnprivilegedUser(folder_.path(), [&] {
        fs::create_directories(inReal("Documents"));
        write(inClone("Documents/a"), "x");
        fs::permissions(inReal("Documents"), fs::perms{0555});
        const bool counted = migrate() == Counts{{"Documents", 0}};
        return counted && read(inClone("Documents/a")) == "x";
    }));
}

TEST_F(SharedUserFoldersTest, AFolderThatMayNotBeReadIsNotMigratedAway) {
    EXPECT_TRUE(asUnprivilegedUser(folder_.path(), [&] {
        makeRealFolders();
        write(inClone("Documents/a"), "x");
        fs::permissions(inClone("Documents"), fs::perms::none);
        const bool counted = migrate() == Counts{{"Documents", 0}};
        fs::permissions(inClone("Documents"), fs::perms{0700});
        return counted && read(inClone("Documents/a")) == "x";
    }));
}

TEST_F(SharedUserFoldersTest, TheUsersOwnHomeIsTheDestinationUnlessToldOtherwise) {
    const TemporaryHome home;
    write(inClone("Documents/a"), "x");
    EXPECT_EQ(InstanceLauncher::migrateSharedUserFolders(clone()).moved,
              (Counts{{"Documents", 1}}));
    EXPECT_EQ(read(home / "Documents/a"), "x");
}

} // namespace
} // namespace quorvel
