#include "LaunchKit/Copying/DataSize.h"

#include "LaunchKit/InstanceConfig.h"
#include "tests/support/AppBundles.h"
#include "tests/support/TemporaryHome.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

TEST(DataSizeTest, IsTheSizeOfAllFilesAndOfNothingElse) {
    const TemporaryHome home;
    const std::atomic<bool> goesOn = false;
    const InstanceConfig work = minimalConfig("Work");
    const fs::path data = home / "QuorvelInstances/Work";
    EXPECT_EQ(dataSizeOf(work, 10, goesOn), 0U) << "there is none";
    write(data / "a", "123");
    write(data / "deep/er/b", "4567");
    write(home / "outside", std::string(1000, 'x'));
    fs::create_symlink(home / "outside", data / "link");
    EXPECT_EQ(dataSizeOf(work, 10, goesOn), 7U);
}

TEST(DataSizeTest, IsUnknownForTooManyItemsOrOnceCancelled) {
    const TemporaryHome home;
    const std::atomic<bool> goesOn = false;
    const std::atomic<bool> cancelled = true;
    for (const char* name : {"a", "b", "c"}) {
        write(home / "QuorvelInstances/Work" / name, "1");
    }
    EXPECT_EQ(dataSizeOf(minimalConfig("Work"), 4, goesOn), 3U);
    EXPECT_EQ(dataSizeOf(minimalConfig("Work"), 2, goesOn), std::nullopt);
    EXPECT_EQ(dataSizeOf(minimalConfig("Work"), 4, cancelled), std::nullopt);
}

} // namespace
} // namespace quorvel
