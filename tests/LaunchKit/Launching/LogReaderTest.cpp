#include "LaunchKit/Launching/LogReader.h"

#include "tests/support/TemporaryHome.h"

#include <gtest/gtest.h>

#include <fstream>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

class LogReaderTest : public ::testing::Test {
protected:
    [[nodiscard]] fs::path log() const { return folder_ / "quorvel-instance.log"; }

    void append(const std::string& text) const { std::ofstream(log(), std::ios::app) << text; }

    TemporaryFolder folder_{};
    LogReader reader_{folder_.path()};
};

TEST_F(LogReaderTest, ALogThatIsMissingIsReadOnceItIsThere) {
    EXPECT_FALSE(reader_.hasLog());
    EXPECT_EQ(reader_.next(), "");
    append("one\n");
    EXPECT_TRUE(reader_.hasLog());
    EXPECT_EQ(reader_.size(), 4U);
    EXPECT_EQ(reader_.next(), "one\n");
    EXPECT_EQ(reader_.next(), "");
    append("two\n");
    EXPECT_EQ(reader_.next(), "two\n");
}

TEST_F(LogReaderTest, ALargeLogComesInParts) {
    const std::string text(150'000, 'x');
    append(text);
    std::string whole;
    for (std::string part = reader_.next(); !part.empty(); part = reader_.next()) {
        EXPECT_LE(part.size(), 65536U);
        whole += part;
    }
    EXPECT_EQ(whole, text);
}

TEST_F(LogReaderTest, ALogThatIsSetAsideIsReadToItsEndFirst) {
    append("one\n");
    EXPECT_EQ(reader_.next(), "one\n");
    append("two\n");
    fs::rename(log(), folder_ / "quorvel-instance.log.1");
    append("three\n");
    EXPECT_EQ(reader_.next(), "two\n");
    EXPECT_EQ(reader_.next(), "three\n");
    EXPECT_EQ(reader_.next(), "");
}

TEST_F(LogReaderTest, ALogThatWasEmptiedIsReadFromItsBeginning) {
    append("a long line\n");
    EXPECT_EQ(reader_.next(), "a long line\n");
    fs::resize_file(log(), 0);
    append("new\n");
    EXPECT_EQ(reader_.next(), "new\n");
}

TEST_F(LogReaderTest, ReadingBeginsAtTheGivenPosition) {
    append("0123456789");
    reader_.skipTo(6);
    EXPECT_EQ(reader_.next(), "6789");
}

TEST_F(LogReaderTest, WhatIsNotAFileIsNotALog) {
    fs::create_symlink("/dev/null", log());
    EXPECT_FALSE(reader_.hasLog());
    EXPECT_EQ(reader_.size(), 0U);
    EXPECT_EQ(reader_.next(), "");
}

} // namespace
} // namespace quorvel
