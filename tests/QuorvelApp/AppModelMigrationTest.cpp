#include "LaunchKit/Homes/HomeLock.h"
#include "tests/QuorvelApp/AppModelFixture.h"

#include <gmock/gmock.h>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::StartsWith;

class AppModelMigrationTest : public AppModelFixture {};

TEST_F(AppModelMigrationTest, MigrationMovesFilesSwitchesToSharingAndSaysHowMany) {
    InstanceRecord record = addClone("Work");
    record.config.shareUserFolders = false;
    makeWrapper(record.bundleURL, record.config);
    write(home / "QuorvelInstances/Work/Downloads/a", "a");
    write(home / "QuorvelInstances/Work/Downloads/b", "b");
    model().reload();
    resultOf(model().migrateSharedFolders(record));
    EXPECT_EQ(model().statusMessage(), "Moved 2 from Downloads into your shared folders. "
                                       "\u201cWork\u201d now saves there.");
    EXPECT_TRUE(model().clones().front().config.shareUserFolders);
    EXPECT_EQ(read(home / "Downloads/a"), "a");
    EXPECT_THAT(stubbed.tasks->priorities, ElementsAre(TaskPriority::userInitiated));
}

TEST_F(AppModelMigrationTest, MigrationNamesTheFoldersInTheirOwnOrder) {
    const InstanceRecord record = addClone("Work");
    write(home / "QuorvelInstances/Work/Desktop/a", "a");
    write(home / "QuorvelInstances/Work/Documents/b", "b");
    resultOf(model().migrateSharedFolders(record));
    EXPECT_EQ(model().statusMessage(),
              "Moved 1 from Documents, 1 from Desktop into your shared folders. "
              "\u201cWork\u201d now saves there.");
}

TEST_F(AppModelMigrationTest, NothingIsMigratedWhileATargetRunsInTheHome) {
    const InstanceRecord record = addClone("Work");
    const fs::path document = home / "QuorvelInstances/Work/Documents/a";
    write(document, "a");
    const std::optional<FileLock> running = lockHome(record.config);
    resultOf(model().migrateSharedFolders(record));
    EXPECT_EQ(model().lastError(), "Couldn't move the files: " + HomeInUse("Work").description());
    EXPECT_EQ(read(document), "a");
}

TEST_F(AppModelMigrationTest, AMigrationWithNothingToMoveSaysSo) {
    resultOf(model().migrateSharedFolders(addClone("Work")));
    EXPECT_EQ(model().statusMessage(),
              "\u201cWork\u201d now shares Downloads, Documents & Desktop with your Mac \u2014 "
              "nothing needed moving.");
    EXPECT_FALSE(model().lastError());
}

TEST_F(AppModelMigrationTest, AMigrationOfACloneThatCantBeChangedIsAnErrorWithWhatWasMoved) {
    InstanceRecord record = addClone("Work");
    record.config.shareUserFolders = false;
    fs::remove_all(record.bundleURL);
    write(home / "QuorvelInstances/Work/Downloads/a", "a");
    resultOf(model().migrateSharedFolders(record));
    EXPECT_FALSE(model().statusMessage());
    EXPECT_EQ(model().lastError(),
              "Moved 1 from Downloads into your shared folders. The clone at " +
                  record.bundleURL.string() +
                  " couldn’t be changed, so folder sharing is still off.");
    EXPECT_EQ(read(home / "Downloads/a"), "a");
}

TEST_F(AppModelMigrationTest, AMigrationThatHadToLeaveItemsNamesThemAndDoesNotShare) {
    InstanceRecord record = addClone("Work");
    record.config.shareUserFolders = false;
    makeWrapper(record.bundleURL, record.config);
    write(home / "QuorvelInstances/Work/Documents/fine", "f");
    for (const char* name : {"1", "2", "3", "4", "5", "6", "7"}) {
        write(home / "QuorvelInstances/Work/Downloads" / name, "x");
    }
    write(home / "Downloads", "a file in the way");
    model().reload();
    resultOf(model().migrateSharedFolders(record));
    EXPECT_FALSE(model().statusMessage());
    EXPECT_THAT(*model().lastError(),
                StartsWith("Moved 1 from Documents into your shared folders. Not everything could "
                           "be moved, so the clone still has folders of its own:\n“"));
    EXPECT_THAT(*model().lastError(),
                ::testing::EndsWith("” couldn’t be moved: not a directory\n… and 2 more"));
    EXPECT_FALSE(model().clones().front().config.shareUserFolders);
    EXPECT_EQ(read(home / "QuorvelInstances/Work/Downloads/7"), "x");
}

TEST_F(AppModelMigrationTest, AMigrationKeepsWhatAnotherProgramChanged) {
    InstanceRecord record = addClone("Work");
    record.config.shareUserFolders = false;
    InstanceConfig changed = record.config;
    changed.displayName = "Renamed";
    makeWrapper(record.bundleURL, changed);
    resultOf(model().migrateSharedFolders(record));
    EXPECT_THAT(names(), ElementsAre("Renamed"));
    EXPECT_TRUE(model().clones().front().config.shareUserFolders);
}

} // namespace
} // namespace quorvel::testing
