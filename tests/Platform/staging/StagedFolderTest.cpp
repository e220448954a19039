#include "Platform/staging/StagedFolder.h"

#include "Platform/files/PlatformError.h"
#include "tests/support/TemporaryHome.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <optional>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

class StagedFolderTest : public ::testing::Test {
protected:
    [[nodiscard]] fs::path place() const { return folder_ / "homes/Work"; }

    // Returns what is beside the destination.
    [[nodiscard]] std::size_t items() const {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(place().parent_path()), fs::directory_iterator()));
    }

    TemporaryFolder folder_{};
};

TEST_F(StagedFolderTest, NothingIsAtTheDestinationUntilItIsPublished) {
    {
        StagedFolder staged(place());
        EXPECT_EQ(staged.path().parent_path(), place().parent_path());
        struct stat facts {};
        ASSERT_EQ(::stat(staged.path().c_str(), &facts), 0);
        EXPECT_EQ(facts.st_mode & 0777U, 0700U);
        write(staged.path() / "file", "text");
        EXPECT_FALSE(fs::exists(place()));
        staged.publish();
        EXPECT_EQ(staged.path(), place());
    }
    EXPECT_EQ(read(place() / "file"), "text");
    EXPECT_EQ(items(), 1U);
}

TEST_F(StagedFolderTest, WithoutPublishingNothingIsLeft) {
    {
        const StagedFolder staged(place());
        write(staged.path() / "deep/file", "text");
    }
    EXPECT_EQ(items(), 0U);
}

TEST_F(StagedFolderTest, OnlyAnEmptyFolderIsReplaced) {
    fs::create_directories(place());
    StagedFolder(place()).publish();
    EXPECT_TRUE(fs::is_empty(place()));
    write(place() / "kept", "kept");
    StagedFolder second(place());
    write(second.path() / "file", "");
    EXPECT_THROW(second.publish(), PlatformError);
    EXPECT_EQ(treeOf(place()).size(), 1U);
}

TEST_F(StagedFolderTest, WhatWasPublishedCanBeWithdrawn) {
    StagedFolder staged(place());
    staged.publish();
    staged.withdraw();
    EXPECT_EQ(items(), 0U);

    StagedFolder replaced(place());
    replaced.publish();
    fs::rename(place(), folder_ / "moved");
    write(place() / "other", "");
    replaced.withdraw();
    EXPECT_TRUE(fs::exists(place() / "other")) << "it is another folder";
}

TEST_F(StagedFolderTest, OnlyWhatIsAbandonedIsRemoved) {
    const StagedFolder used(place());
    const fs::path abandoned =
        place().parent_path() / ".quorvel-copying-01234567-89ab-cdef-0123-456789abcdef";
    write(abandoned / "file", "");
    write(place().parent_path() / "other/file", "");
    write(place().parent_path() / ".quorvel-copying-machines/file", "");
    StagedFolder::removeAbandoned(place().parent_path());
    EXPECT_TRUE(fs::exists(used.path()));
    EXPECT_FALSE(fs::exists(abandoned));
    EXPECT_EQ(items(), 3U);
}

} // namespace
} // namespace quorvel
