// Making a clone asks no tool about signatures. Shown with a tool in the system's own place, in a
// mount namespace of this test's.
#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/WrapperGenerator.h"
#include "tests/support/AppBundles.h"
#include "tests/support/TemporaryHome.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

enum Outcome { notRun, run, notPermitted, broken };

// Whether `use` runs the tool.
Outcome outcomeOf(const TemporaryFolder& folder, const std::function<void()>& use) {
    const std::string shell = folder / "sh"; // /bin may be what is hidden below
    fs::copy_file("/bin/sh", shell, fs::copy_options::overwrite_existing);
    const pid_t child = ::fork();
    if (child == 0) {
        if (::unshare(CLONE_NEWNS) != 0 ||
            ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            ::mount("none", "/usr/bin", "tmpfs", 0, nullptr) != 0) {
            std::_Exit(notPermitted);
        }
        try {
            write("/usr/bin/codesign",
                  "#!" + shell + "\necho x > " + (folder / "ran").string() + "\n");
            makeExecutable("/usr/bin/codesign");
            use();
        } catch (const std::exception&) {
            std::_Exit(broken);
        }
        std::_Exit(fs::exists(folder / "ran") ? run : notRun);
    }
    int status = 0;
    return child > 0 && ::waitpid(child, &status, 0) == child && WIFEXITED(status)
               ? static_cast<Outcome>(WEXITSTATUS(status))
               : broken;
}

TEST(CodeSigningToolTest, IsNotRunToMakeAClone) {
    const TemporaryFolder folder;
    const fs::path app = makeAppBundle(folder / "Thing.app");
    const Outcome asked = outcomeOf(folder, [&] { (void)AppBundle::read(app); });
    if (asked == notPermitted) {
        GTEST_SKIP() << "mounting needs permission";
    }
    ASSERT_EQ(asked, run) << "callers that need the sandbox flag get the tool's answer";
    fs::remove(folder / "ran");
    WrapperGenerator::Options options;
    options.config = minimalConfig();
    options.config.targetAppPath = app;
    options.runnerBinary = helperProgram();
    EXPECT_EQ(
        outcomeOf(folder, [&] { (void)WrapperGenerator().generate(folder / "out", options); }),
        notRun);
    EXPECT_TRUE(fs::exists(folder / "out/Work.app/Contents/Info.plist"));
}

} // namespace
} // namespace quorvel
