#include "LaunchKit/RunnerLocator.h"

#include "Platform/processes/MainExecutable.h"
#include "Platform/processes/Process.h"
#include "tests/support/AppBundles.h"
#include "tests/support/TemporaryHome.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
namespace fs = std::filesystem;

class RunnerLocatorTest : public ::testing::Test {
protected:
    RunnerLocatorTest() { fs::current_path(folder_.path()); }
    ~RunnerLocatorTest() override { fs::current_path(before_); }

    [[nodiscard]] fs::path at(std::string_view name) const { return folder_ / name; }

    fs::path runner(const std::string& folder, bool executable = true) const {
        fs::path file = at(folder) / "quorvel-runner";
        write(file, "");
        if (executable) {
            makeExecutable(file);
        }
        return file;
    }

    [[nodiscard]] std::optional<fs::path> found() const {
        return RunnerLocator::locate({at("Contents/Resources"), at("Contents/MacOS")});
    }

    fs::path before_ = fs::current_path();
    TemporaryFolder folder_;
};

TEST_F(RunnerLocatorTest, AreLookedForInTheApplicationAndThenInTheBuilds) {
    EXPECT_THAT(RunnerLocator::candidates({"/R", "/M"}),
                ElementsAre("/R/quorvel-runner", "/M/quorvel-runner",
                            at(".build/debug/quorvel-runner"),
                            at(".build/release/quorvel-runner")));
}

TEST_F(RunnerLocatorTest, AnUnknownFolderAddsNoCandidate) {
    EXPECT_THAT(RunnerLocator::candidates({}), ElementsAre(at(".build/debug/quorvel-runner"),
                                                           at(".build/release/quorvel-runner")));
    EXPECT_EQ(RunnerLocator::candidates({std::nullopt, "/M"}).front(), "/M/quorvel-runner");
}

TEST_F(RunnerLocatorTest, TheOneInTheResourcesIsTheFirstChoice) {
    runner(".build/debug");
    runner("Contents/MacOS");
    const fs::path best = runner("Contents/Resources");
    EXPECT_EQ(found(), best);
}

TEST_F(RunnerLocatorTest, OneThatMayNotBeExecutedIsPassedOver) {
    runner("Contents/Resources", false);
    EXPECT_EQ(found(), std::nullopt);
    const fs::path next = runner("Contents/MacOS");
    EXPECT_EQ(found(), next);
}

TEST_F(RunnerLocatorTest, ADebugBuildGoesBeforeARelease) {
    const fs::path release = runner(".build/release");
    EXPECT_EQ(found(), release);
    const fs::path debug = runner(".build/debug");
    EXPECT_EQ(found(), debug);
}

TEST_F(RunnerLocatorTest, AFolderOfThatNameIsNotChosen) {
    fs::create_directories(at("Contents/Resources/quorvel-runner"));
    EXPECT_EQ(found(), std::nullopt);
}

TEST_F(RunnerLocatorTest, ALinkToOneIsAccepted) {
    const fs::path real = runner("elsewhere");
    fs::create_directories(at("Contents/Resources"));
    fs::create_symlink(real, at("Contents/Resources/quorvel-runner"));
    EXPECT_EQ(found(), at("Contents/Resources/quorvel-runner"));
    fs::remove(real);
    EXPECT_EQ(found(), std::nullopt) << "a dangling link will not";
}

TEST_F(RunnerLocatorTest, ACurrentFolderThatIsGoneAddsNoPlace) {
    fs::create_directory(at("gone"));
    fs::current_path(at("gone"));
    fs::remove(at("gone"));
    EXPECT_THAT(RunnerLocator::candidates({"/R", {}}), ElementsAre("/R/quorvel-runner"));
}

TEST_F(RunnerLocatorTest, ThisProgramsOwnFolderIsSearched) {
    const auto folders = ApplicationFolders::current();
    ASSERT_TRUE(folders.executables && folders.resources);
    EXPECT_EQ(*folders.executables, mainExecutable().parent_path());
    EXPECT_EQ(*folders.resources, mainExecutable().parent_path().parent_path() / "libexec/quorvel");
}

// Set for copies of this program, which are elsewhere.
constexpr const char* expectedResources = "QUORVEL_TEST_EXPECTED_RESOURCES";

TEST_F(RunnerLocatorTest, AProgramInABundleHasItsRunnerAmongTheBundlesResources) {
    if (const char* expected = std::getenv(expectedResources)) {
        EXPECT_EQ(ApplicationFolders::current().resources, fs::path(expected));
        return;
    }
    const std::vector<std::pair<fs::path, fs::path>> places{
        {"A.app/Contents/MacOS", "A.app/Contents/Resources"},
        {"A.app/Contents/bin", "A.app/Contents/libexec/quorvel"},
        {"A.app/Other/MacOS", "A.app/Other/libexec/quorvel"}};
    const fs::path folder = fs::canonical(folder_.path());
    for (const auto& [place, resources] : places) {
        fs::create_directories(folder / place);
        Process::Options options;
        options.executable = folder / place / "program";
        fs::copy_file(mainExecutable(), options.executable);
        options.arguments = {"--gtest_filter=RunnerLocatorTest.AProgramInABundle*"};
        options.environment = currentEnvironment();
        options.environment->insert_or_assign(expectedResources, (folder / resources).string());
        EXPECT_THAT(Process::capture(options, 1U << 16U),
                    ::testing::HasSubstr("[  PASSED  ] 1 test."))
            << place;
        fs::remove(options.executable);
    }
}

} // namespace
} // namespace quorvel
