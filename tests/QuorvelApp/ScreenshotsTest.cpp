// The program that saves pictures of the windows.
#include "Platform/processes/Process.h"
#include "tests/support/AppBundles.h"
#include "tests/support/TemporaryHome.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace quorvel::testing {
namespace {

TEST(ScreenshotsTest, WithoutARunnerItSaysSoAndSavesNothing) {
    const TemporaryHome home; // and a folder for Qt at run time
    const TemporaryFolder folder;
    const std::filesystem::path program = folder / "bin/app_screenshots";
    std::filesystem::create_directories(program.parent_path());
    std::filesystem::copy_file(QUORVEL_SCREENSHOTS, program);
    const std::string script =
        "cd '" + folder.path().string() + "' && bin/app_screenshots pictures 2>&1; echo $?";
    EXPECT_EQ(Process::capture({.executable = "/bin/sh", .arguments = {"-c", script}}, 4096),
              "There is no quorvel-runner beside this program. Build it first.\n1\n");
    EXPECT_FALSE(std::filesystem::exists(folder / "pictures"));
}

} // namespace
} // namespace quorvel::testing
