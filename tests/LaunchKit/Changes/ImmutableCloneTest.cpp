// Deleting clones whose configuration the file system protects from any change.
#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/InstanceRegistry.h"
#include "Platform/files/PlatformError.h"
#include "tests/support/AppBundles.h"
#include "tests/support/ImmutableFile.h"
#include "tests/support/SmallDisk.h"
#include "tests/support/TemporaryHome.h"

#include <atomic>
#include <fstream>
#include <gmock/gmock.h>
#include <optional>
#include <thread>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::HasSubstr;
namespace fs = std::filesystem;

class ImmutableCloneTest : public ::testing::Test {
protected:
    ImmutableCloneTest() {
        makeWrapper(wrapper_, minimalConfig());
        write(wrapper_ / "Contents/MacOS/runner", "x");
        for (int number = 0; number < 1000; ++number) {
            write(data_ / std::to_string(number), "x");
        }
    }

    // Makes files until no more can be made.
    static void fillUp(const fs::path& folder) {
        int number = 0;
        while (std::ofstream(folder / std::to_string(number))) {
            ++number;
        }
    }

    TemporaryHome home_{};
    fs::path wrapper_ = home_ / "Applications/Work.app";
    fs::path configuration_ = wrapper_ / "Contents/Resources/instance.json";
    fs::path data_ = home_ / "QuorvelInstances/Work";
};

TEST_F(ImmutableCloneTest, IsRefusedBeforeAnythingGoes) {
    const ImmutableFile immutable(configuration_);
    if (!immutable.isSet()) {
        GTEST_SKIP() << "no file can be made immutable here";
    }
    const auto before = treeOf(home_.path());
    try {
        InstanceRegistry().remove({wrapper_, minimalConfig()}, true);
        ADD_FAILURE() << "removed";
    } catch (const PlatformError& error) {
        EXPECT_EQ(error.code(), std::errc::operation_not_permitted);
        EXPECT_THAT(error.description(), HasSubstr("“instance.json” couldn’t be removed"));
    }
    EXPECT_EQ(treeOf(home_.path()), before);
}

TEST_F(ImmutableCloneTest, DataThatCantBeRemovedStaysAndIsReported) {
    const ImmutableFile immutable(data_);
    if (!immutable.isSet()) {
        GTEST_SKIP() << "no folder can be made immutable here";
    }
    const DeletedData data = InstanceRegistry().remove({wrapper_, minimalConfig()}, true);
    EXPECT_TRUE(data.isFailure());
    EXPECT_THAT(data.description(), HasSubstr("not permitted"));
    EXPECT_TRUE(fs::exists(data_ / "0"));
    EXPECT_FALSE(fs::exists(wrapper_));
}

// On a full disk, a clone is deleted where it is.
TEST_F(ImmutableCloneTest, ThatStaysThoughItsDataIsGoneIsReported) {
    const auto problem = onSmallDisk(home_ / "Applications", "nr_inodes=20", [&]() -> std::string {
        makeWrapper(wrapper_, minimalConfig());
        write(wrapper_ / "Contents/MacOS/runner", "x");
        fillUp(home_ / "Applications");
        std::optional<ImmutableFile> immutable;
        std::atomic<bool> done = false;
        // The runner goes right before the data, whose thousands of files take a while.
        std::thread protecting([&] {
            while (!done && fs::exists(wrapper_ / "Contents/MacOS/runner")) {
            }
            immutable.emplace(configuration_);
        });
        const DeletedData data = InstanceRegistry().remove({wrapper_, minimalConfig()}, true);
        done = true;
        protecting.join();
        if (!immutable->isSet()) {
            return "not immutable";
        }
        return fs::exists(data_) || !fs::exists(configuration_) || !data.isFailure() ||
                       data.outcome != DeletedData::Case::removed
                   ? "not reported"
                   : data.description();
    });
    if (!problem || *problem == "not immutable") {
        GTEST_SKIP() << "no file can be made immutable here";
    }
    EXPECT_THAT(*problem, HasSubstr(data_.string() + " was deleted"));
    EXPECT_THAT(*problem, HasSubstr("“instance.json” couldn’t be removed"));
}

} // namespace
} // namespace quorvel
