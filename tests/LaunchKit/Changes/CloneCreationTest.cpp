#include "LaunchKit/Changes/CloneCreation.h"

#include "LaunchKit/Copying/CloneWithData.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/InstanceRegistry.h"
#include "LaunchKit/WrapperGenerator.h"
#include "Platform/files/FileLock.h"
#include "tests/support/AppBundles.h"
#include "tests/support/TemporaryHome.h"

#include <gmock/gmock.h>

#include <future>
#include <stdexcept>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

class CloneCreationTest : public ::testing::Test {
protected:
    static WrapperFactory::Request request(const std::string& url = "https://a.test") {
        WrapperFactory::Request request;
        request.kind = ShortcutKind::web;
        request.displayName = "Work";
        request.url = url;
        return request;
    }
    std::future<MadeClone> creation(const RequestPermissions& permissions) {
        return std::async(std::launch::async, [this, permissions] {
            return createClone(factory, request("https://late.test"), permissions);
        });
    }
    [[nodiscard]] std::string urlOfClone() const {
        const auto record = InstanceRegistry().record(place);
        return record ? record->config.url.value_or("none") : "no clone";
    }

    TemporaryHome home;
    fs::path place = home / "Applications/Work.app";
    WrapperFactory factory{runnerProgram()};
};

TEST_F(CloneCreationTest, MakesTheFolderOfClonesAndLeavesNoLock) {
    EXPECT_EQ(createClone(factory, request(), {}).wrapper, place);
    EXPECT_EQ(urlOfClone(), "https://a.test");
    EXPECT_FALSE(FileLock::isHeld(home / "Applications"));
    EXPECT_EQ(std::distance(fs::directory_iterator(home / "Applications"), {}), 1);
}

TEST_F(CloneCreationTest, LeavesNoFolderWhenTheRequestCantBeCarriedOut) {
    EXPECT_THROW((void)createClone(WrapperFactory(home / "no-runner"), request(), {}),
                 WrapperGenerator::GenError);
    EXPECT_FALSE(fs::exists(home / "Applications"));
}

TEST_F(CloneCreationTest, WarnsOfTwoNamesThatBecomeOneIdentifier) {
    std::vector<std::string> warnings;
    const auto make = [&](const std::string& name) {
        WrapperFactory::Request named = request();
        named.displayName = name;
        const MadeClone made =
            createClone(factory, named, {.existingClone = true},
                        [&](const std::string& warning) { warnings.push_back(warning); });
        EXPECT_EQ(made.record->config.bundleId, "app.quorvel.instance.work-1");
    };
    make("Work 1");
    make("Work 1");
    EXPECT_THAT(warnings, ::testing::IsEmpty()) << "one that is made again is the same one";
    make("work-1");
    EXPECT_THAT(warnings, ::testing::ElementsAre(::testing::StartsWith(
                              "“work-1” has the same bundle identifier as “Work 1”, "
                              "app.quorvel.instance.work-1. ")));
}

TEST_F(CloneCreationTest, AWarningDelaysNoOtherCreationAndUndoesNothing) {
    (void)createClone(factory, request(), {});
    WrapperFactory::Request second = request();
    second.displayName = "work";
    write(home / "original/file", "data");
    int warnings = 0;
    const auto warn = [&](const std::string& /*text*/) {
        ++warnings;
        EXPECT_FALSE(FileLock::isHeld(home / "Applications"));
        throw std::runtime_error("the terminal is gone");
    };
    const CloneWithData made =
        createCloneWithData(factory, second, {}, {.parts = {{home / "original", ""}}}, warn);
    EXPECT_EQ(warnings, 1);
    EXPECT_TRUE(made.clone.record);
    EXPECT_EQ(read(home / "QuorvelInstances/work/file"), "data");
    EXPECT_TRUE(fs::exists(home / "Applications/work.app"));
}

TEST_F(CloneCreationTest, WaitsForAnotherCreationAndThenSeesItsClone) {
    fs::create_directories(home / "Applications");
    for (const bool mayReplace : {false, true}) {
        fs::remove_all(place);
        std::optional<FileLock> other = FileLock::tryTakeFolder(home / "Applications");
        ASSERT_TRUE(other);
        std::future<MadeClone> late = creation({.existingClone = mayReplace});
        EXPECT_EQ(late.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
        (void)factory.create(request("https://first.test"));
        other.reset();
        if (mayReplace) {
            EXPECT_EQ(late.get().wrapper, place);
            EXPECT_EQ(urlOfClone(), "https://late.test");
        } else {
            EXPECT_THROW((void)late.get(), CloneExists);
            EXPECT_EQ(urlOfClone(), "https://first.test");
        }
    }
}

TEST_F(CloneCreationTest, ReportsItsOwnCloneThoughOthersReplaceItAtOnce) {
    constexpr int rounds = 4;
    const auto createOften = [&](int creator) {
        int ownClones = 0;
        for (int round = 0; round < rounds; ++round) {
            const std::string url = "https://" + std::to_string(creator * rounds + round) + ".test";
            const auto record = createClone(factory, request(url), {.existingClone = true}).record;
            ownClones += record && record->config.url == url ? 1 : 0;
        }
        return ownClones;
    };
    std::vector<std::future<int>> creators;
    creators.reserve(16);
    for (int creator = 0; creator < 16; ++creator) {
        creators.push_back(std::async(std::launch::async, createOften, creator));
    }
    for (std::future<int>& creator : creators) {
        EXPECT_EQ(creator.get(), rounds);
    }
}

TEST_F(CloneCreationTest, ReplacesNothingThatAppearedWhileItWaited) {
    fs::create_directories(home / "Applications");
    std::optional<FileLock> other = FileLock::tryTakeFolder(home / "Applications");
    std::future<MadeClone> late = creation({.existingClone = true, .damagedClone = true});
    EXPECT_EQ(late.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
    write(place / "notes.txt", "mine");
    other.reset();
    EXPECT_THROW((void)late.get(), InvalidRequest);
    EXPECT_EQ(read(place / "notes.txt"), "mine");
}

} // namespace
} // namespace quorvel
