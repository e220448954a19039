#include "LaunchKit/Copying/CopiedData.h"

#include "LaunchKit/Homes/HomeLock.h"
#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/InstanceRegistry.h"
#include "Platform/staging/StagedChange.h"
#include "tests/support/AppBundles.h"
#include "tests/support/TemporaryHome.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

class CopiedDataTest : public ::testing::Test {
protected:
    CopiedDataTest() { write(home_ / "original/deep/file", "data"); }

    [[nodiscard]] fs::path place() const { return home_ / "QuorvelInstances/Work"; }
    [[nodiscard]] fs::path wrapper() const { return home_ / "Applications/Work.app"; }
    [[nodiscard]] fs::path mark() const { return place() / ".quorvel-copied"; }

    [[nodiscard]] CopiedData copy(const std::string& to = "") const {
        return {place(), {{.from = home_ / "original", .to = to}}, {}};
    }

    // As a program would leave it that was killed then.
    void leaveUnfinishedFor(const fs::path& clone) const {
        fs::create_directories(clone.parent_path());
        CopiedData data = copy();
        data.complete(clone);
        data.publish();
    }
    void leaveUnfinished() const { leaveUnfinishedFor(wrapper()); }

    void settle() const { CopiedData::removeUnfinished(place().parent_path()); }

    TemporaryHome home_{};
};

TEST_F(CopiedDataTest, TheMarkIsThereUntilTheCloneIs) {
    CopiedData data = copy();
    EXPECT_FALSE(fs::exists(place()));
    data.complete(wrapper());
    data.publish();
    EXPECT_TRUE(fs::exists(mark()));
    settle();
    EXPECT_TRUE(fs::exists(mark())) << "the clone is still being made";
    data.finish();
    EXPECT_FALSE(fs::exists(mark()));
    EXPECT_EQ(read(place() / "deep/file"), "data");
    EXPECT_EQ(data.report().items, 2U);
}

TEST_F(CopiedDataTest, PartsGetTheirPlaces) {
    CopiedData data = copy("a/b");
    data.complete(wrapper());
    data.publish();
    EXPECT_EQ(read(place() / "a/b/deep/file"), "data");
}

TEST_F(CopiedDataTest, WithoutACloneItIsRemovedLater) {
    leaveUnfinished();
    settle();
    EXPECT_FALSE(fs::exists(place()));
}

TEST_F(CopiedDataTest, WithACloneItStaysAndLosesItsMark) {
    leaveUnfinished();
    makeWrapper(wrapper(), "Work");
    settle();
    EXPECT_FALSE(fs::exists(mark()));
    EXPECT_EQ(read(place() / "deep/file"), "data");
    fs::remove_all(wrapper());
    settle();
    EXPECT_TRUE(fs::exists(place() / "deep/file")) << "kept by the user";
}

TEST_F(CopiedDataTest, DataOfACloneThatWasRenamedStays) {
    leaveUnfinished();
    makeWrapper(home_ / "Applications/Renamed.app", "Work");
    settle();
    EXPECT_TRUE(fs::exists(place() / "deep/file"));
}

TEST_F(CopiedDataTest, DataOfACloneThatWasMovedAmongTheOthersStays) {
    leaveUnfinishedFor(home_ / "Elsewhere/Work.app");
    makeWrapper(wrapper(), "Work");
    settle();
    EXPECT_TRUE(fs::exists(place() / "deep/file"));
}

TEST_F(CopiedDataTest, DataWhoseOwnerIsUnknownStays) {
    leaveUnfinished();
    fs::rename(home_ / "Applications", home_ / "not-mounted");
    settle();
    EXPECT_TRUE(fs::exists(mark()));
    fs::rename(home_ / "not-mounted", home_ / "Applications");
    {
        const auto lock = FileLock::tryTakeFolder(home_ / "Applications");
        settle();
        EXPECT_TRUE(fs::exists(mark())) << "a clone is being made or changed there";
    }
    {
        const StagedChange change(home_ / "Applications");
        settle();
        EXPECT_TRUE(fs::exists(mark())) << "the clone may be in the hidden folder";
    }
    settle();
    EXPECT_FALSE(fs::exists(place()));
}

TEST_F(CopiedDataTest, ACloneWithOtherDataDoesNotCount) {
    leaveUnfinished();
    InstanceConfig config = minimalConfig();
    config.instanceHome = "~/Elsewhere";
    makeWrapper(wrapper(), config);
    settle();
    EXPECT_FALSE(fs::exists(place()));
}

TEST_F(CopiedDataTest, ACopiedMarkIsIgnored) {
    leaveUnfinished();
    fs::copy(place(), home_ / "QuorvelInstances/Backup", fs::copy_options::recursive);
    settle();
    EXPECT_TRUE(fs::exists(home_ / "QuorvelInstances/Backup/deep/file"));
}

TEST_F(CopiedDataTest, DataThatIsUsedLosesItsMark) {
    leaveUnfinished();
    (void)lockHome(minimalConfig());
    settle();
    EXPECT_TRUE(fs::exists(place() / "deep/file"));
}

TEST_F(CopiedDataTest, DeletingACloneKeepsItsDataForGood) {
    leaveUnfinished();
    makeWrapper(wrapper(), "Work");
    const InstanceRegistry registry;
    (void)registry.remove(registry.record(wrapper()).value(), false);
    settle();
    EXPECT_TRUE(fs::exists(place() / "deep/file"));
}

TEST_F(CopiedDataTest, NothingIsCopiedIntoItselfOrAroundItself) {
    fs::create_directory_symlink(home_ / "original", home_ / "link");
    const auto before = treeOf(home_.path());
    const auto copyTo = [&](const fs::path& to) {
        const CopiedData data(to, {{.from = home_ / "original"}}, {});
    };
    EXPECT_THROW(copyTo(home_ / "original/deep/copy"), DataCopyError);
    EXPECT_THROW(copyTo(home_ / "link/copy"), DataCopyError);
    EXPECT_EQ(treeOf(home_.path()), before);
    EXPECT_NO_THROW(copyTo(home_ / "original-2"));
}

TEST_F(CopiedDataTest, NothingIsReplaced) {
    write(place() / "file", "");
    EXPECT_THROW((void)copy(), DataCopyError);
    fs::remove_all(place());
    fs::create_directory_symlink(home_ / "original", place());
    EXPECT_THROW((void)copy(), DataCopyError);
    fs::remove(place());
    fs::create_directory(place());
    EXPECT_NO_THROW((void)copy());
}

} // namespace
} // namespace quorvel
