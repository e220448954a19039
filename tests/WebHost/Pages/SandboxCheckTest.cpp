#include "WebHost/Pages/SandboxCheck_linux.h"

#include "Platform/processes/Process.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/Waiting.h"

#include <gmock/gmock.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::HasSubstr;
namespace fs = std::filesystem;

std::string status(const std::string& filter, const std::string& numbers) {
    return "Name:\tWebKitWebProces\nNSpid:\t" + numbers + "\nSeccomp:\t" + filter +
           "\nSeccomp_filters:\t1\n";
}

TEST(SandboxCheckTest, ASandboxHasAFilterAndItsOwnProcessNumbers) {
    EXPECT_TRUE(isSandboxed(status("2", "812\t3"), status("0", "800")));
    EXPECT_TRUE(isSandboxed(status("2", "9\t8\t2"), status("2", "5\t4")));
    EXPECT_FALSE(isSandboxed(status("0", "812\t3"), status("0", "800")));
    EXPECT_FALSE(isSandboxed(status("2", "812"), status("2", "800"))) << "the container's filter";
    EXPECT_FALSE(isSandboxed(status("2", "9\t8"), status("2", "5\t4")));
    EXPECT_FALSE(isSandboxed("Name:\tSeccomp:\t2\nNSpid:\t1\t2\n", status("0", "800")))
        << "a name is not a line";
    EXPECT_FALSE(isSandboxed("", status("0", "800"))) << "it has ended";
}

// A process of that name, which no sandbox contains.
TEST(SandboxCheckTest, APagesProcessWithoutASandboxIsNoticed) {
    EXPECT_THAT(sandboxProblem(), HasSubstr("no page process was found"));
    const TemporaryFolder folder;
    fs::copy_file("/bin/sleep", folder / "WebKitWebProcess");
    Process page = Process::run({.executable = folder / "WebKitWebProcess", .arguments = {"60"}});
    EXPECT_TRUE(
        waitUntil([] { return sandboxProblem().starts_with("pages run without their sandbox"); }));
    page.terminate();
    page.waitUntilExit();
    EXPECT_THAT(sandboxProblem(), HasSubstr("no page process was found"));
}

} // namespace
} // namespace quorvel
