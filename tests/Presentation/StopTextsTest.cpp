#include "Presentation/StopTexts.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

TEST(StopTextsTest, CountTheProcesses) {
    EXPECT_EQ(stillRunningText("Work", 1, inEnglish),
              "“Work” was asked to end, but 1 process is still running.");
    EXPECT_EQ(stillRunningText("%2", 12, inEnglish),
              "“%2” was asked to end, but 12 processes are still running.");
}

} // namespace
} // namespace quorvel
