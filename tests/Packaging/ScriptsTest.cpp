#include "tests/Packaging/Commands.h"

#include <gtest/gtest.h>

namespace quorvel::testing {
namespace {

TEST(PackagingScript, SaysWhereThereIsNoMacThatItNeedsOne) {
    const Outcome outcome = outcomeOf({QUORVEL_SOURCE "/scripts/package-macos"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "scripts/package-macos needs a Mac: the tools that sign and pack an "
                              "application are there only.\n");
}

TEST(TestSummary, TellsWhatWasSkippedAndWhyAndEndsWithTheCounts) {
    const TemporaryFolder folder;
    write(folder / "CMakeLists.txt", R"(cmake_minimum_required(VERSION 3.20)
project(Sample NONE)
enable_testing()
add_test(NAME Passes COMMAND sh -c "echo 'a.cpp:1: Skipped'; echo 'not this'")
add_test(NAME Says COMMAND sh -c "echo Running; echo 'a.cpp:1: Skipped'; echo 'a disk: missing'; echo '[  SKIPPED ]'")
set_tests_properties(Says PROPERTIES SKIP_REGULAR_EXPRESSION "SKIPPED ")
add_test(NAME Ends COMMAND sh -c "echo 'no compiler'; exit 77")
set_tests_properties(Ends PROPERTIES SKIP_RETURN_CODE 77)
add_test(NAME Fails COMMAND false)
)");
    const std::string build = folder / "build";
    const std::string ctest = std::filesystem::path(QUORVEL_CMAKE).parent_path() / "ctest";
    ASSERT_EQ(outcomeOf({QUORVEL_CMAKE, "-S", folder.path(), "-B", build}).status, 0);
    write(folder / "printed", outcomeOf({ctest, "--test-dir", build}).output);
    const std::string output =
        outcomeOf({QUORVEL_SOURCE "/scripts/test-summary", folder / "printed",
                   build + "/Testing/Temporary/LastTest.log"})
            .output;
    EXPECT_TRUE(output.starts_with("\n==> Skipped\nEnds: no compiler\nSays: a disk: missing\n\n"
                                   "75% tests passed, 1 tests failed out of 4\nTotal Test time"))
        << output;
    EXPECT_TRUE(output.ends_with("\n1 passed, 1 failed, 2 skipped\n")) << output;
}

} // namespace
} // namespace quorvel::testing
