// The built program, for users whose home is where HOME says.
#include "tests/Packaging/Commands.h"
#include "tests/support/AppBundles.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

namespace quorvel {
namespace {

namespace fs = std::filesystem;
using namespace testing;

Environment homeVariable(const std::string& home) {
    return {{"HOME", home}, {"PATH", "/usr/bin:/bin"}};
}

TEST(HomeTest, ClonesAreMadeWhereTheHomeVariableSays) {
    const TemporaryFolder folder;
    const std::string name = "Home test " + std::to_string(::getpid());
    const Outcome made = outcomeOf(
        {QUORVEL_CTL, "create", "--kind", "command", "--name", name, "--command", "/bin/true"},
        homeVariable(folder.path()));
    EXPECT_EQ(made.status, 0) << made.output;
    EXPECT_TRUE(fs::exists(folder / "Applications" / (name + ".app")));
    EXPECT_FALSE(
        fs::exists(fs::path(getpwuid(getuid())->pw_dir) / "Applications" / (name + ".app")));
    const Outcome listed = outcomeOf({QUORVEL_CTL, "list"}, homeVariable(folder.path()));
    EXPECT_NE(listed.output.find(name), std::string::npos) << listed.output;
}

TEST(HomeTest, InACloneItsOwnHomeCounts) {
    const TemporaryFolder folder;
    const fs::path program = folder / "maker";
    write(program, "#!/bin/sh\nexec \"" QUORVEL_CTL
                   "\" create --kind command --name Inner --command /bin/true\n");
    makeExecutable(program);
    const fs::path entry = folder / "maker.desktop";
    write(entry, "[Desktop Entry]\nType=Application\nName=Maker\nExec=" + program.string() + "\n");
    const Environment outer = homeVariable(folder.path());
    const Outcome made =
        outcomeOf({QUORVEL_CTL, "create", "--target", entry.string(), "--name", "Outer"}, outer);
    ASSERT_EQ(made.status, 0) << made.output;
    const fs::path clones = folder / "Applications";
    const Outcome ran = outcomeOf({clones / "Outer.app/Contents/MacOS/runner"}, outer);
    EXPECT_EQ(ran.status, 0) << ran.output;
    const fs::path home = folder / "QuorvelInstances/Outer";
    EXPECT_TRUE(fs::exists(home / "Applications/Inner.app")) << read(home / "quorvel-instance.log");
    EXPECT_FALSE(fs::exists(clones / "Inner.app"));
}

TEST(HomeTest, AnAccountWithoutAnEntryInTheUserDatabaseCanMakeClones) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can become a user who isn't in the user database";
    }
    constexpr uid_t unlisted = 54321;
    ASSERT_EQ(getpwuid(unlisted), nullptr);
    const TemporaryFolder folder;
    // Where that user can reach them, wherever the build is.
    fs::copy_file(QUORVEL_CTL, folder / "quorvelctl");
    fs::copy_file(runnerProgram(), folder / "quorvel-runner");
    fs::create_directory(folder / "home");
    ASSERT_EQ(::chown((folder / "home").c_str(), unlisted, unlisted), 0);
    fs::permissions(folder.path(), fs::perms(0755));
    const std::string number = std::to_string(unlisted);
    const Outcome made =
        outcomeOf({"/usr/bin/setpriv", "--reuid", number, "--regid", number, "--clear-groups",
                   (folder / "quorvelctl").string(), "create", "--kind", "command", "--name",
                   "Unlisted", "--command", "/bin/true"},
                  homeVariable(folder / "home"));
    EXPECT_EQ(made.status, 0) << made.output;
    EXPECT_TRUE(fs::exists(folder / "home/Applications/Unlisted.app"));
}

} // namespace
} // namespace quorvel
