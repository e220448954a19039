#include "Platform/watching/FSEventTranslation.h"

#include "tests/support/TemporaryHome.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;
using Paths = std::vector<std::string>;
using Flags = std::vector<std::uint32_t>;

// A folder that is also reachable through a link, as /var is on macOS.
class FSEventTranslationTestLinkedFolder : public ::testing::Test {
protected:
    FSEventTranslationTestLinkedFolder() {
        fs::create_directories(real_ / "home");
        fs::create_directory_symlink(real_, linked_);
    }

    const TemporaryFolder folder_;
    const fs::path real_ = fs::canonical(folder_.path()) / "private";
    const fs::path linked_ = fs::canonical(folder_.path()) / "var";
};

TEST_F(FSEventTranslationTestLinkedFolder, IsWatchedByItsRealPath) {
    EXPECT_EQ(FSEventTranslation({linked_ / "home"}).realRoots(), Paths{real_ / "home"});
}

TEST_F(FSEventTranslationTestLinkedFolder, IsReportedUnderTheGivenName) {
    const FSEventTranslation translation({linked_ / "home"});
    EXPECT_EQ(translation.givenPath((real_ / "home/a/b.txt").string()), linked_ / "home/a/b.txt");
    EXPECT_EQ(translation.givenPath((real_ / "home").string()), linked_ / "home");
}

TEST_F(FSEventTranslationTestLinkedFolder, IsResolvedBeforeItExists) {
    const FSEventTranslation translation({linked_ / "later/home"});
    EXPECT_EQ(translation.realRoots(), Paths{real_ / "later/home"});
    EXPECT_EQ(translation.givenPath((real_ / "later/home/x").string()), linked_ / "later/home/x");
}

TEST_F(FSEventTranslationTestLinkedFolder, IsWatchedOnceUnderTwoNamesAndReportedUnderTheFirst) {
    const FSEventTranslation translation({linked_ / "home", real_ / "home"});
    EXPECT_EQ(translation.realRoots(), Paths{real_ / "home"});
    EXPECT_EQ(translation.givenPath((real_ / "home/x").string()), linked_ / "home/x");
}

TEST_F(FSEventTranslationTestLinkedFolder, LosesItsTrailingSlashes) {
    const FSEventTranslation translation({linked_.string() + "/home//"});
    EXPECT_EQ(translation.realRoots(), Paths{real_ / "home"});
    EXPECT_EQ(translation.givenPath((real_ / "home/x").string()), linked_ / "home/x");
}

TEST(FSEventTranslationTest, LeavesPathsOutsideTheGivenFoldersUnchanged) {
    const FSEventTranslation translation({"/nowhere/a"});
    EXPECT_EQ(translation.givenPath("/nowhere/ab/c"), "/nowhere/ab/c");
    EXPECT_EQ(translation.givenPath("/nowhere"), "/nowhere");
    EXPECT_EQ(translation.givenPath(""), "");
}

TEST(FSEventTranslationTest, UsesTheFirstOfTwoNestedFolders) {
    EXPECT_EQ(FSEventTranslation({"/nowhere/a", "/nowhere/a/b"}).givenPath("/nowhere/a/b/c"),
              "/nowhere/a/b/c");
}

TEST(FSEventTranslationTest, HandlesTheRootOfTheFileSystem) {
    const FSEventTranslation translation({"/"});
    EXPECT_EQ(translation.realRoots(), Paths{"/"});
    EXPECT_EQ(translation.givenPath("/nowhere/x"), "/nowhere/x");
    EXPECT_EQ(translation.givenPath("/"), "/");
}

TEST(FSEventTranslationTest, KeepsKnownFlagsAndDropsOthers) {
    constexpr std::uint32_t known = FSEventFlag::itemCreated | FSEventFlag::itemRemoved |
                                    FSEventFlag::itemRenamed | FSEventFlag::itemModified |
                                    FSEventFlag::itemIsDir;
    constexpr std::uint32_t attributes = 0x00000400 | 0x00002000 | 0x00004000 | 0x00008000;
    constexpr std::uint32_t kinds = 0x00010000 | 0x00040000;
    constexpr std::uint32_t history = 0x00000008 | 0x00000010 | 0x00000020;
    const FSEventTranslation translation({"/nowhere"});
    EXPECT_EQ(translation.translated({"/nowhere/x"}, Flags{known | attributes | kinds}).flags,
              Flags{known});
    EXPECT_EQ(translation.translated({"/nowhere/x"}, Flags{history}).flags, Flags{0});
}

TEST(FSEventTranslationTest, ReportsAllKindsOfLossAsOneFlag) {
    const FSEventTranslation translation({"/nowhere"});
    for (const std::uint32_t loss : {0x1U, 0x2U, 0x4U, 0x7U}) {
        EXPECT_EQ(translation.translated({"/nowhere"}, Flags{loss}).flags,
                  Flags{FSEventFlag::mustScanSubDirs});
    }
}

TEST(FSEventTranslationTest, DropsABatchWhoseListsDifferInLength) {
    const FSEventTranslation translation({"/nowhere"});
    EXPECT_TRUE(translation.translated({"/nowhere/x"}, Flags{}).paths.empty());
    EXPECT_TRUE(translation.translated({}, Flags{FSEventFlag::itemCreated}).flags.empty());
    const FSEventBatch batch = translation.translated({}, Flags{});
    EXPECT_TRUE(batch.paths.empty() && batch.flags.empty());
}

} // namespace
} // namespace quorvel
