#include "tests/Packaging/Commands.h"

#include "LaunchKit/WrapperGenerator.h"
#include "tests/support/AppBundles.h"
#include "tests/support/Waiting.h"

#include <gtest/gtest.h>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;

// Without a display, a home or a desktop's bus.
Outcome versionOf(const std::string& program) {
    return outcomeOf({program, "--version"}, Environment{});
}

TEST(VersionTest, IsPrintedByTheCommandLine) {
    const Outcome printed = versionOf(QUORVEL_CTL);
    EXPECT_EQ(printed.output, "quorvelctl " QUORVEL_VERSION "\n");
    EXPECT_EQ(printed.status, 0);
}

TEST(VersionTest, IsPrintedByTheWindowsProgramWithoutADisplay) {
    if (std::string_view(QUORVEL_WINDOW).empty()) {
        GTEST_SKIP() << "built without the window";
    }
    const Outcome printed = versionOf(QUORVEL_WINDOW);
    EXPECT_EQ(printed.output, "quorvel " QUORVEL_VERSION "\n");
    EXPECT_EQ(printed.status, 0);
}

TEST(VersionTest, IsPrintedByTheRunnerOutsideAWrapper) {
    const Outcome printed = versionOf(runnerProgram());
    EXPECT_EQ(printed.output, "quorvel-runner " QUORVEL_VERSION "\n");
    EXPECT_EQ(printed.status, 0);
}

TEST(VersionTest, OfTheTargetIsAskedForInsideAWrapper) {
    const TemporaryHome home;
    WrapperGenerator::Options options;
    options.config.displayName = "Work";
    options.config.bundleId = "com.example.work";
    options.config.instanceHome = "~/I";
    options.config.targetAppPath = makeAppBundle(home / "Thing.app");
    options.config.extraArgs = {"arguments"};
    options.config.openWithPassthrough = true;
    options.runnerBinary = runnerProgram();
    const fs::path wrapper = WrapperGenerator().generate(home / "Applications", options);
    const Outcome running = outcomeOf({(wrapper / "Contents/MacOS/runner").string(), "--version"});
    EXPECT_EQ(running.status, 0) << running.output;
    EXPECT_EQ(read(home / "I/quorvel-instance.log"), "1\n--version\n");
}

} // namespace
} // namespace quorvel::testing
