#include "Platform/watching/DconfDatabase_linux.h"

#include "Platform/watching/DataPlaces.h"
#include "tests/support/SessionBus.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/Waiting.h"

#include <gmock/gmock.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Key;
using ::testing::Pair;
namespace fs = std::filesystem;

const fs::path real = QUORVEL_SOURCE_DIR "/fuzz/corpus/dconf/real";

TEST(DconfDatabaseTest, NamesEverySettingByItsPath) {
    const auto settings = dconfSettings(read(real));
    ASSERT_TRUE(settings);
    EXPECT_THAT(*settings, ElementsAre(Key("/org/gnome/calculator/accuracy"),
                                       Key("/org/gnome/desktop/interface/clock-show-seconds")));
    EXPECT_THAT(*settings, ::testing::Contains(Pair("/org/gnome/calculator/accuracy",
                                                    std::string("\5\0\0\0\0i", 6))));
}

TEST(DconfDatabaseTest, WhatIsCutOffOrChangedIsRefusedOrSmall) {
    const std::string bytes = read(real);
    ASSERT_GT(bytes.size(), 300U);
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        (void)dconfSettings(bytes.substr(0, size)); // within its bounds, as sanitizers see
        std::string changed = bytes;
        changed[size] = static_cast<char>(~changed[size]);
        (void)dconfSettings(changed);
    }
    EXPECT_FALSE(dconfSettings(bytes.substr(0, 100)));
    EXPECT_FALSE(dconfSettings(""));
    std::string loop = bytes;
    loop.replace(0x44, 4, std::string(4, '\0')); // the first item becomes its own parent
    EXPECT_FALSE(dconfSettings(loop));
}

TEST(DconfDatabaseTest, IsThatOfTheServiceThatWritesIt) {
    if (!fs::exists("/usr/libexec/dconf-service") || !fs::exists("/usr/bin/gsettings")) {
        GTEST_SKIP() << "dconf is not installed";
    }
    const TemporaryFolder folder;
    const DataPlace place{.folder = (folder / "config/dconf").string(), .isShared = true};
    EXPECT_THAT(sharedSettings(place).value(), IsEmpty());
    const auto set = [&](const std::string& value) {
        Process::Options options;
        options.executable = "/usr/bin/dbus-run-session";
        options.arguments = {
            "--", "gsettings", "set", "org.gnome.desktop.interface", "clock-show-seconds", value};
        options.environment = currentEnvironment();
        (*options.environment)["XDG_CONFIG_HOME"] = (folder / "config").string();
        (*options.environment)["HOME"] = folder.path().string();
        options.environment->erase("GSETTINGS_BACKEND");
        options.standardError = Process::Discard{};
        return Process::run(options).waitUntilExit();
    };
    if (set("true") != 0) {
        GTEST_SKIP() << "there is no such setting here";
    }
    const auto first = sharedSettings(place);
    EXPECT_THAT(*first, ElementsAre(Key("/org/gnome/desktop/interface/clock-show-seconds")));
    EXPECT_EQ(set("false"), 0);
    EXPECT_NE(sharedSettings(place), first);
}

} // namespace
} // namespace quorvel
