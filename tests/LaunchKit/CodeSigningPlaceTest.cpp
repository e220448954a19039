// The code-signing tool at its fixed place, which only a file system of the test's own can have.
#include "LaunchKit/AppBundle.h"
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

enum Answer { sandboxed = 0, notSandboxed = 1, notAllowed = 2 };

// Returns the output of a process that sees the folder as /usr/bin.
int answerWith(const fs::path& programs, const fs::path& app) {
    const pid_t child = ::fork();
    if (child == 0) {
        if (::unshare(CLONE_NEWNS) != 0 ||
            ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            ::mount(programs.c_str(), "/usr/bin", nullptr, MS_BIND, nullptr) != 0) {
            std::_Exit(notAllowed);
        }
        const auto bundle = AppBundle::read(app);
        std::_Exit(bundle && bundle->sandboxed ? sandboxed : notSandboxed);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WEXITSTATUS(status);
}

TEST(CodeSigningPlaceTest, IsLookedForAtItsPlaceAlone) {
    const TemporaryFolder folder;
    // A tool that prints its arguments names the entitlement for a bundle of this name.
    const fs::path app = makeAppBundle(folder / "com.apple.security.app-sandbox.app");
    fs::create_directories(folder / "with");
    fs::create_directories(folder / "without");
    fs::copy_file("/usr/bin/echo", folder / "with/codesign");
    fs::copy_file("/usr/bin/echo", folder / "without/codesign2");
    const int with = answerWith(folder / "with", app);
    if (with == notAllowed) {
        GTEST_SKIP() << "this user may not mount anything";
    }
    EXPECT_EQ(with, sandboxed);
    EXPECT_EQ(answerWith(folder / "without", app), notSandboxed);
}

} // namespace
} // namespace quorvel
