#include "LaunchKit/Wrappers/WrapperLayout.h"

#include "LaunchKit/Changes/RequestCheck.h"
#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/WrapperGenerator.h"
#include "tests/support/AppBundles.h"
#include "tests/support/TemporaryHome.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

class WrapperLayoutTest : public ::testing::Test {
protected:
    WrapperLayoutTest() {
        InstanceConfig config = minimalConfig();
        config.kind = ShortcutKind::web;
        wrapper_ = WrapperGenerator().generate(home_ / "Applications", {config, runnerProgram()});
    }
    void damage() const { write(wrapper_ / "Contents/Resources/instance.json", "{"); }

    TemporaryHome home_;
    fs::path wrapper_;
};

TEST_F(WrapperLayoutTest, KnowsWhereThePartsOfAWrapperAre) {
    EXPECT_EQ(configOf(wrapper_), wrapper_ / "Contents/Resources/instance.json");
    EXPECT_EQ(iconOf(wrapper_), wrapper_ / "Contents/Resources/AppIcon.icns");
    EXPECT_EQ(runnerOf(wrapper_), wrapper_ / "Contents/MacOS/runner");
    EXPECT_EQ(userApplicationsFolder(), home_ / "Applications");
    EXPECT_EQ(wrapperPath(home_.path(), "/A"), home_.path().string() + "//A.app");
    EXPECT_TRUE(fs::is_regular_file(configOf(wrapper_)));
    EXPECT_TRUE(fs::is_regular_file(runnerOf(wrapper_)));
}

TEST_F(WrapperLayoutTest, AWholeCloneIsNotDamaged) {
    EXPECT_FALSE(isDamagedWrapper(wrapper_));
    EXPECT_FALSE(isDamagedWrapper(home_ / "none.app"));
}

TEST_F(WrapperLayoutTest, ACloneWithoutAReadableConfigurationIsDamaged) {
    damage();
    EXPECT_TRUE(isDamagedWrapper(wrapper_));
    write(wrapper_ / "Contents/Resources/AppIcon.icns", "icon");
    EXPECT_TRUE(isDamagedWrapper(wrapper_));
}

TEST_F(WrapperLayoutTest, TheWebHostIsAPartOfAWrapper) {
    damage();
    write(webHostOf(wrapper_), "module");
    EXPECT_EQ(webHostOf(wrapper_), wrapper_ / "Contents/Frameworks/quorvel-web-host.so");
    EXPECT_TRUE(isDamagedWrapper(wrapper_));
    write(wrapper_ / "Contents/Frameworks/other.so", "mine");
    EXPECT_FALSE(isDamagedWrapper(wrapper_));
}

TEST_F(WrapperLayoutTest, TheProgramForTheMenuBarIsAPartOfAWrapper) {
    damage();
    write(statusItemOf(wrapper_), "program");
    EXPECT_EQ(statusItemOf(wrapper_), wrapper_ / "Contents/Helpers/quorvel-status-item");
    EXPECT_TRUE(isDamagedWrapper(wrapper_));
    for (const char* part : {"Info.plist", "PkgInfo", "Resources"}) {
        fs::remove_all(wrapper_ / "Contents" / part);
    }
    EXPECT_TRUE(isUnfinishedWrapper(wrapper_));
    write(wrapper_ / "Contents/Helpers/other", "mine");
    EXPECT_FALSE(isUnfinishedWrapper(wrapper_));
}

TEST_F(WrapperLayoutTest, AWholeCloneThatLostItsConfigurationAloneIsDamaged) {
    fs::remove(wrapper_ / "Contents/Resources/instance.json");
    EXPECT_TRUE(isDamagedWrapper(wrapper_));
    for (const char* part : {"MacOS/runner", "Info.plist", "PkgInfo"}) {
        fs::rename(wrapper_ / "Contents" / part, home_ / "part");
        EXPECT_FALSE(isDamagedWrapper(wrapper_)) << part;
        fs::rename(home_ / "part", wrapper_ / "Contents" / part);
    }
    write(wrapper_ / "Contents/Resources/notes.txt", "mine");
    EXPECT_FALSE(isDamagedWrapper(wrapper_));
}

TEST_F(WrapperLayoutTest, AConfigurationThatIsNotAFileIsKept) {
    const fs::path config = wrapper_ / "Contents/Resources/instance.json";
    fs::remove(config);
    write(config / "notes.txt", "mine");
    EXPECT_FALSE(isDamagedWrapper(wrapper_));
    fs::remove_all(config);
    fs::create_symlink("/nowhere", config);
    EXPECT_FALSE(isDamagedWrapper(wrapper_));
}

TEST_F(WrapperLayoutTest, AFolderWithAnythingElseBelongsToSomeoneElse) {
    damage();
    for (const char* other : {"notes.txt", "Contents/Frameworks/library", "Contents/MacOS/other",
                              "Contents/Resources/notes.txt"}) {
        write(wrapper_ / other, "x");
        EXPECT_FALSE(isDamagedWrapper(wrapper_)) << other;
        fs::remove(wrapper_ / other);
        if (std::string_view(other).starts_with("Contents/Frameworks")) {
            fs::remove(wrapper_ / "Contents/Frameworks");
        }
    }
    EXPECT_TRUE(isDamagedWrapper(wrapper_));
    fs::remove(wrapper_ / "Contents/MacOS/runner");
    EXPECT_FALSE(isDamagedWrapper(wrapper_));
}

TEST_F(WrapperLayoutTest, ADamagedCloneIsReplacedOnlyIfThatIsAllowed) {
    damage();
    WrapperFactory::Request request;
    request.kind = ShortcutKind::web;
    request.displayName = "Work";
    EXPECT_THROW(validateRequest(request), DamagedClone);
    EXPECT_NO_THROW(validateRequest(request, std::nullopt, {.damagedClone = true}));
    write(wrapper_ / "notes.txt", "mine");
    EXPECT_THROW(validateRequest(request, std::nullopt, {.damagedClone = true}), InvalidRequest);
}

} // namespace
} // namespace quorvel
