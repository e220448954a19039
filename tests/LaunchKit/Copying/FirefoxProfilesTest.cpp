#include "LaunchKit/Copying/FirefoxProfiles.h"

#include "tests/support/TemporaryHome.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

class FirefoxProfilesTest : public ::testing::Test {
protected:
    FirefoxProfilesTest() {
        for (const char* name : {"a", "b", "c"}) {
            fs::create_directory(folder_ / name);
        }
    }

    [[nodiscard]] std::optional<fs::path> defaultOf(const std::string& text) const {
        write(folder_ / "profiles.ini", text);
        return defaultFirefoxProfile(folder_.path());
    }

    TemporaryFolder folder_{};
};

const std::string three = "[Profile0]\nName=x\nIsRelative=1\nPath=a\n"
                          "[Profile1]\nIsRelative=1\nPath=b\nDefault=1\n"
                          "[Profile2]\nIsRelative=1\nPath=c\n";

TEST_F(FirefoxProfilesTest, TheInstallationsChoiceCountsBeforeTheMark) {
    EXPECT_EQ(defaultOf(three + "[InstallABC]\nDefault=c\nLocked=1\n"), folder_ / "c");
    EXPECT_EQ(defaultOf(three), folder_ / "b");
    EXPECT_EQ(defaultOf("[Profile0]\r\nIsRelative=1\r\nPath=a\r\n"), folder_ / "a");
}

TEST_F(FirefoxProfilesTest, ContradictoryChoicesCountAsNone) {
    EXPECT_EQ(defaultOf(three + "[InstallA]\nDefault=c\n[InstallB]\nDefault=a\n"), std::nullopt);
    EXPECT_EQ(defaultOf(three + "[InstallA]\nDefault=c\n[InstallB]\nDefault=c\n"), folder_ / "c");
    EXPECT_EQ(defaultOf(three + "[Profile3]\nIsRelative=1\nPath=d\nDefault=1\n"), std::nullopt);
    EXPECT_EQ(defaultOf("[Profile0]\nIsRelative=1\nPath=a\n[Profile1]\nIsRelative=1\nPath=b\n"),
              std::nullopt);
}

TEST_F(FirefoxProfilesTest, APathMayBeAbsolute) {
    EXPECT_EQ(defaultOf("[Profile0]\nIsRelative=0\nPath=" + (folder_ / "c").string() + "\n"),
              folder_ / "c");
    EXPECT_EQ(defaultOf("[Profile0]\nIsRelative=0\nPath=c\n"), std::nullopt);
}

TEST_F(FirefoxProfilesTest, AMissingProfileIsNotTheDefault) {
    EXPECT_EQ(defaultFirefoxProfile(folder_.path()), std::nullopt);
    EXPECT_EQ(defaultOf(""), std::nullopt);
    EXPECT_EQ(defaultOf("Path=a\n=\n[\n[]\n"), std::nullopt);
    EXPECT_EQ(defaultOf("[Profile0]\nIsRelative=1\nPath=gone\n"), std::nullopt);
    EXPECT_EQ(defaultOf("[InstallA]\nDefault=a\n"), std::nullopt) << "no such profile";
}

} // namespace
} // namespace quorvel
