#include "LaunchKit/Homes/FolderSharing.h"

#include "LaunchKit/Homes/HomeLock.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/InstanceRegistry.h"
#include "tests/support/AppBundles.h"
#include "tests/support/EveryStep.h"
#include "tests/support/TemporaryHome.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::IsEmpty;
namespace fs = std::filesystem;

class FolderSharingTest : public ::testing::Test {
protected:
    // A clone with folders of its own.
    [[nodiscard]] InstanceRecord addClone() const {
        InstanceConfig config = minimalConfig("Work");
        config.shareUserFolders = false;
        return {makeWrapper(home_ / "Applications/Work.app", config), config};
    }

    TemporaryHome home_{};
    fs::path data_ = home_ / "QuorvelInstances/Work";
};

TEST_F(FolderSharingTest, TheHomeIsLockedUntilItsFoldersAreLinks) {
    const InstanceRecord record = addClone();
    int midway = 0;
    const auto observe = [&] {
        if (fs::exists(home_ / "Documents/a") &&
            SharedUserFolders::needsSharedFolderMigration(data_)) {
            ++midway;
            EXPECT_TRUE(isHomeInUse(record.config));
        }
    };
    Kill kill = Kill::done;
    for (int step = 0; kill != Kill::ended; ++step) {
        fs::remove_all(data_);
        fs::remove_all(home_ / "Documents");
        write(data_ / "Documents/a", "a");
        write(data_ / "Desktop/b", "b");
        kill = withFault(step, {.meanwhile = observe}, [&] {
                   (void)moveToSharedFolders(InstanceRegistry(), record);
               }).kill;
        if (kill == Kill::notPermitted) {
            GTEST_SKIP() << "processes may not be traced here";
        }
    }
    EXPECT_GT(midway, 2);
    EXPECT_FALSE(isHomeInUse(record.config));
    EXPECT_TRUE(InstanceRegistry().record(record.bundleURL)->config.shareUserFolders);
}

TEST_F(FolderSharingTest, NothingIsMovedOutOfAHomeThatIsInUse) {
    const InstanceRecord record = addClone();
    write(data_ / "Documents/a", "a");
    const std::optional<FileLock> running = lockHome(record.config);
    EXPECT_THROW((void)moveToSharedFolders(InstanceRegistry(), record), HomeInUse);
    EXPECT_EQ(read(data_ / "Documents/a"), "a");
    EXPECT_FALSE(InstanceRegistry().record(record.bundleURL)->config.shareUserFolders);
}

TEST_F(FolderSharingTest, ACloneThatKeepsSomethingDoesNotShare) {
    const InstanceRecord record = addClone();
    write(data_ / "Documents/a", "a");
    write(home_ / "Documents", "a file in the way");
    const FolderSharing result = moveToSharedFolders(InstanceRegistry(), record);
    EXPECT_EQ(result.migration.unmoved.size(), 1U);
    EXPECT_EQ(result.failure, "");
    EXPECT_FALSE(InstanceRegistry().record(record.bundleURL)->config.shareUserFolders);
}

TEST_F(FolderSharingTest, AConfigurationThatCantBeChangedIsReportedWithWhatWasMoved) {
    const InstanceRecord record = addClone();
    write(data_ / "Documents/a", "a");
    fs::remove_all(record.bundleURL);
    const FolderSharing result = moveToSharedFolders(InstanceRegistry(), record);
    EXPECT_EQ(result.migration.moved.at("Documents"), 1);
    EXPECT_EQ(result.failure, "The clone at " + record.bundleURL.string() +
                                  " couldn’t be changed, so folder sharing is still off.");
}

TEST_F(FolderSharingTest, AHomeThatDoesNotExistHasNothingToMove) {
    const InstanceRecord record = addClone();
    const FolderSharing result = moveToSharedFolders(InstanceRegistry(), record);
    EXPECT_THAT(result.migration.moved, IsEmpty());
    EXPECT_TRUE(InstanceRegistry().record(record.bundleURL)->config.shareUserFolders);
    EXPECT_FALSE(fs::exists(data_ / homeLockName));
}

} // namespace
} // namespace quorvel
