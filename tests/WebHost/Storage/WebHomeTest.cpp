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

} // namespace
} // namespace quorvel
