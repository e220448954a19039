#include "WebHost/SandboxCheck_linux.h"

#include "Platform/processes/Process.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/Waiting.h"

#include <gmock/gmock.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::StartsWith;
namespace fs = std::filesystem;

TEST(SandboxCheckTest, ReadsTheModeOfTheFilter) {
    EXPECT_EQ(seccompModeIn("Name:\tx\nSeccomp:\t2\nSeccomp_filters:\t1\n"), 2);
    EXPECT_EQ(seccompModeIn("Name:\tx\nSeccomp:\t0\n"), 0);
    EXPECT_EQ(seccompModeIn("Name:\tSeccomp:\t2\n"), std::nullopt) << "a name is not a line";
    EXPECT_EQ(seccompModeIn(""), std::nullopt);
}

// A process of that name, which no sandbox contains.
TEST(SandboxCheckTest, APagesProcessWithoutAFilterIsNoticed) {
    EXPECT_EQ(sandboxProblem(), "") << "there is no such process";
    const TemporaryFolder folder;
    fs::copy_file("/bin/sleep", folder / "WebKitWebProcess");
    Process page = Process::run({.executable = folder / "WebKitWebProcess", .arguments = {"60"}});
    EXPECT_TRUE(waitUntil([] { return !sandboxProblem().empty(); }));
    EXPECT_THAT(sandboxProblem(), StartsWith("pages run without their sandbox"));
    page.terminate();
    page.waitUntilExit();
    EXPECT_EQ(sandboxProblem(), "");
}

} // namespace
} // namespace quorvel
