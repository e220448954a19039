// The runner is copied into every wrapper, so it must be small and self-contained.
#include "Platform/files/FileSystem.h"
#include "Platform/processes/Process.h"
#include "tests/support/AppBundles.h"
#include "tests/support/Sanitizer.h"
#include "tests/support/TemporaryHome.h"

#include <gtest/gtest.h>
#include <sstream>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

class RunnerBinaryTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (isSanitized) {
            GTEST_SKIP() << "a sanitizer brings libraries and size of its own";
        }
    }
};

std::vector<std::string> neededLibraries() {
    Process::Options options;
    options.executable = "/usr/bin/readelf";
    options.arguments = {"-dW", runnerProgram()};
    std::istringstream lines(Process::capture(options, 1U << 20U));
    std::vector<std::string> libraries;
    for (std::string line; std::getline(lines, line);) {
        if (line.find("(NEEDED)") != std::string::npos) {
            libraries.push_back(line.substr(line.find('[')));
        }
    }
    return libraries;
}

TEST_F(RunnerBinaryTest, NeedsFewLibraries) {
    if (!isExecutableFile("/usr/bin/readelf")) {
        GTEST_SKIP() << "readelf is not installed";
    }
    const auto libraries = neededLibraries();
    EXPECT_FALSE(libraries.empty());
    EXPECT_LE(libraries.size(), 6U);
}

TEST_F(RunnerBinaryTest, LoadsNeitherQtNorIcu) {
    if (!isExecutableFile("/usr/bin/ldd")) {
        GTEST_SKIP() << "ldd is not installed";
    }
    const std::string loaded =
        Process::capture({.executable = "/usr/bin/ldd", .arguments = {runnerProgram()}}, 1U << 20U);
    EXPECT_NE(loaded.find("libc"), std::string::npos);
    EXPECT_EQ(loaded.find("Qt"), std::string::npos) << loaded;
    EXPECT_EQ(loaded.find("libicu"), std::string::npos) << loaded;
}

TEST_F(RunnerBinaryTest, IsSmallWithoutItsSymbols) {
#ifndef NDEBUG
    GTEST_SKIP() << "a debug build is not what users get";
#endif
    if (!isExecutableFile("/usr/bin/strip")) {
        GTEST_SKIP() << "strip is not installed";
    }
    const TemporaryFolder folder;
    const fs::path stripped = folder / "runner";
    Process strip = Process::run(
        {.executable = "/usr/bin/strip", .arguments = {"-o", stripped, runnerProgram()}});
    ASSERT_EQ(strip.waitUntilExit(), 0);
    EXPECT_LE(fs::file_size(stripped), std::uintmax_t{3} << 19U) << "1.5 MiB";
}

} // namespace
} // namespace quorvel
