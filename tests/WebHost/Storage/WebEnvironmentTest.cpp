#include "WebHost/Storage/WebEnvironment_linux.h"

#include "tests/support/TemporaryHome.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

TEST(WebEnvironmentTest, EveryFolderOfTheSessionIsReplaced) {
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

TEST(WebEnvironmentTest, InTheUsersOwnHomeTheCacheIsNotOpenedToPages) {
    const TemporaryHome user;
    const Environment environment = webEnvironment(
        user.path().string(), {{"HOME", user.path().string()}, {"XDG_CACHE_HOME", "/x"}}, {});
    EXPECT_EQ(environment.at("XDG_CACHE_HOME"),
              user.path().string() + "/.local/share/quorvel/web/pages");
}

TEST(WebEnvironmentTest, PagesProcessesDontGetSecretsUnlessTheCloneSaysSo) {
    const TemporaryHome user;
    const Environment wanted{{"DISPLAY", ":1"},          {"WAYLAND_DISPLAY", "w"},
                             {"LC_TIME", "de_DE.UTF-8"}, {"XDG_ACTIVATION_TOKEN", "x"},
                             {"GDK_BACKEND", "x11"},     {"https_proxy", "http://p:1"}};
    Environment session = wanted;
    for (const char* name :
         {"SSH_AUTH_SOCK", "GITHUB_TOKEN", "MY_API_KEY", "DB_PASSWORD", "AWS_SECRET_ACCESS_KEY",
          "AWS_ACCESS_KEY_ID", "PGPASSFILE", "MYSQL_PWD", "DB_PASS", "GITHUB_PAT", "DATABASE_URL",
          "my_token", "QUORVEL_WEB_HOST", "WEBKIT_DISABLE_SANDBOX_THIS_IS_DANGEROUS",
          "WEBKIT_INSPECTOR_SERVER", "GPG_AGENT_INFO"}) {
        session[name] = "x";
    }
    const std::string home = (user / "I").string();
    const Environment environment = webEnvironment(home, session, {{"APP_TOKEN", "wanted"}});
    for (const auto& [name, value] : session) {
        EXPECT_EQ(environment.contains(name), wanted.contains(name)) << name;
    }
    EXPECT_EQ(environment.at("APP_TOKEN"), "wanted");
}

} // namespace
} // namespace quorvel
