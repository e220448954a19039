#include "Platform/homes/UserPaths.h"

#include "Platform/homes/HomeOrder.h"
#include "tests/support/TemporaryHome.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

namespace quorvel {
namespace {

using namespace testing;

TEST(UserPathsTest, TheFixedHomeComesBeforeTheUserDatabase) {
    const TemporaryHome home;
    EXPECT_EQ(UserPaths::home(), home.path());
}

TEST(UserPathsTest, TheHomeVariableComesBeforeTheUserDatabaseWhereTheSystemFollowsIt) {
    const ScopedEnvironment fixed("CFFIXED_USER_HOME", "");
    const ScopedEnvironment variable("HOME", "/somewhere/else/");
    EXPECT_EQ(UserPaths::home(),
              homeVariableComesFirst() ? "/somewhere/else" : getpwuid(getuid())->pw_dir);
}

TEST(UserPathsTest, ARelativeOrEmptyHomeVariableIsIgnored) {
    const ScopedEnvironment fixed("CFFIXED_USER_HOME", "");
    for (const char* odd : {"", "relative", "~"}) {
        const ScopedEnvironment variable("HOME", odd);
        EXPECT_EQ(UserPaths::home(), getpwuid(getuid())->pw_dir) << odd;
    }
}

TEST(UserPathsTest, ATrailingSlashOfTheHomeIsRemoved) {
    const ScopedEnvironment fixed("CFFIXED_USER_HOME", "/Users/u//");
    EXPECT_EQ(UserPaths::home(), "/Users/u");
    EXPECT_EQ(UserPaths::expandTilde("~/I"), "/Users/u/I");
}

TEST(UserPathsTest, ARelativeFixedHomeIsIgnored) {
    const ScopedEnvironment fixed("CFFIXED_USER_HOME", "relative");
    const ScopedEnvironment variable("HOME", "");
    EXPECT_EQ(UserPaths::home(), getpwuid(getuid())->pw_dir);
}

TEST(UserPathsTest, ALeadingTildeIsTheHome) {
    const ScopedEnvironment fixed("CFFIXED_USER_HOME", "/Users/u");
    EXPECT_EQ(UserPaths::expandTilde("~"), "/Users/u");
    EXPECT_EQ(UserPaths::expandTilde("~/"), "/Users/u");
    EXPECT_EQ(UserPaths::expandTilde("~/a/~"), "/Users/u/a/~");
}

TEST(UserPathsTest, AnExpandedPathHasNoTrailingSlash) {
    const ScopedEnvironment fixed("CFFIXED_USER_HOME", "/Users/u");
    EXPECT_EQ(UserPaths::expandTilde("~/x/"), "/Users/u/x");
    EXPECT_EQ(UserPaths::expandTilde("~/x//"), "/Users/u/x");
    EXPECT_EQ(UserPaths::expandTilde("~//"), "/Users/u");
    EXPECT_EQ(UserPaths::expandTilde("~/x//y/"), "/Users/u/x//y");
    EXPECT_EQ(UserPaths::expandTilde("~root/x/"), std::string(getpwnam("root")->pw_dir) + "/x");
    EXPECT_EQ(UserPaths::expandTilde("/x//"), "/x//");
    EXPECT_EQ(UserPaths::expandTilde("x/"), "x/");
    const ScopedEnvironment root("CFFIXED_USER_HOME", "/");
    EXPECT_EQ(UserPaths::expandTilde("~/"), "/");
    EXPECT_EQ(UserPaths::expandTilde("~"), "/");
    EXPECT_EQ(UserPaths::expandTilde("~/x/"), "/x");
}

TEST(UserPathsTest, ATildeAnywhereElseStays) {
    EXPECT_EQ(UserPaths::expandTilde("/a/~/b"), "/a/~/b");
    EXPECT_EQ(UserPaths::expandTilde("a~"), "a~");
    EXPECT_EQ(UserPaths::expandTilde(""), "");
}

TEST(UserPathsTest, ANamedUsersHomeComesFromTheUserDatabase) {
    const passwd* root = getpwnam("root");
    ASSERT_NE(root, nullptr);
    const std::string home = root->pw_dir;
    EXPECT_EQ(UserPaths::expandTilde("~root"), home);
    EXPECT_EQ(UserPaths::expandTilde("~root/x"), home + "/x");
}

TEST(UserPathsTest, AnUnknownUsersPathStays) {
    EXPECT_EQ(UserPaths::expandTilde("~no-such-user-here/x"), "~no-such-user-here/x");
}

TEST(UserPathsTest, TheTemporaryFolderFollowsTmpdir) {
    const ScopedEnvironment variable("TMPDIR", "/var/folders/x/");
    EXPECT_EQ(UserPaths::temporaryFolder(), "/var/folders/x");
}

TEST(UserPathsTest, EveryHomeThatMayBeTheUsersIsListed) {
    const TemporaryHome home;
    const ScopedEnvironment variable("HOME", "/somewhere/else");
    const auto homes = UserPaths::allHomes();
    EXPECT_EQ(homes.front(), home.path());
    EXPECT_NE(std::find(homes.begin(), homes.end(), getpwuid(getuid())->pw_dir), homes.end());
    EXPECT_NE(std::find(homes.begin(), homes.end(), "/somewhere/else"), homes.end());
}

} // namespace
} // namespace quorvel
