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

} // namespace
} // namespace quorvel::testing
