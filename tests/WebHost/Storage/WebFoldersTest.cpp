#include "WebHost/Storage/WebHome.h"
#include "tests/support/TemporaryHome.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

TEST(WebFoldersTest, EveryFolderOfTheSessionIsReplaced) {
    const TemporaryHome user;
    const std::string home = (user / "I").string();
    fs::create_directory(home);
    const Environment environment = webEnvironment(
        home,
        {{"HOME", "/x"}, {"XDG_CACHE_HOME", "/x"}, {"XDG_DATA_HOME", "/x"}, {"LANG", "de_DE"}}, {});
    EXPECT_EQ(environment.at("HOME"), home);
    EXPECT_EQ(environment.at("XDG_CACHE_HOME"), home + "/.cache");
    EXPECT_EQ(environment.at("XDG_CONFIG_HOME"), home + "/.config");
    EXPECT_EQ(environment.at("XDG_DATA_HOME"), home + "/.local/share");
    EXPECT_EQ(environment.at("LANG"), "de_DE");
}

TEST(WebFoldersTest, InTheUsersOwnHomeTheCacheIsNotOpenedToPages) {
    const TemporaryHome user;
    const Environment environment = webEnvironment(
        user.path().string(), {{"HOME", user.path().string()}, {"XDG_CACHE_HOME", "/x"}}, {});
    EXPECT_EQ(environment.at("XDG_CACHE_HOME"),
              user.path().string() + "/.local/share/quorvel/web/pages");
}

} // namespace
} // namespace quorvel
