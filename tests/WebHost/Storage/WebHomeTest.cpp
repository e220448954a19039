#include "WebHost/Storage/WebHome.h"

#include "Platform/files/PlatformError.h"
#include "tests/support/TemporaryHome.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::StartsWith;
namespace fs = std::filesystem;

TEST(WebHomeTest, AllWebDataIsBelowTheHomeAndClosedToOthers) {
    const TemporaryFolder folder;
    const WebHome home{(folder / "new/I").string()};
    home.create();
    home.create();
    fs::permissions(home.data, fs::perms{0755});
    home.create();
    for (const std::string& part : {home.home, home.folder, home.data, home.cache}) {
        struct stat facts {};
        ASSERT_EQ(::stat(part.c_str(), &facts), 0) << part;
        EXPECT_EQ(facts.st_mode & 0777U, 0700U) << part;
        EXPECT_THAT(part, StartsWith(home.home));
    }
    EXPECT_THAT(home.permissions, StartsWith(home.folder + "/"));
    EXPECT_THAT(home.windowState, StartsWith(home.folder + "/"));
}

TEST(WebHomeTest, AHomeThatIsThereKeepsItsPermissions) {
    const TemporaryFolder folder;
    const WebHome home{(folder / "shared").string()};
    fs::create_directory(home.home);
    fs::permissions(home.home, fs::perms{0750});
    home.create();
    EXPECT_EQ(fs::status(home.home).permissions(), fs::perms{0750});
    EXPECT_EQ(fs::status(home.folder).permissions(), fs::perms{0700});
}

TEST(WebHomeTest, AFolderThatIsALinkIsRefused) {
    const TemporaryFolder folder;
    const WebHome home{(folder / "I").string()};
    fs::create_directories(home.folder);
    fs::create_directory(folder / "elsewhere");
    fs::create_symlink(folder / "elsewhere", home.data);
    EXPECT_THROW(home.create(), PlatformError);
}

TEST(WebHomeTest, PagesProcessesDontGetSecretsUnlessTheCloneSaysSo) {
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
